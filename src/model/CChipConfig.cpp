#include "model/CChipConfig.h"

#include "messages/CTheMsgHnd.h"
#include "model/CStoreInfo.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/SubsystemNames.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <set>
#include <typeinfo>
#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr std::int32_t LAYER_DEFAULTS = 0;
constexpr std::int32_t LAYER_MAXIMUM = 15;
constexpr std::int32_t LAYER_ALL_COMBINED = 16;

/// The context as a `CKesContext`: itself, or a copy of its tags in `spare`.
const CKesContext& AsKesContext(const IConfigContext& context, CKesContext& spare) {
    if (typeid(context) == typeid(CKesContext)) return static_cast<const CKesContext&>(context);
    if (const auto* base = dynamic_cast<const CBaseContext*>(&context))
        static_cast<CBaseContext&>(spare) = *base;
    for (const std::string_view tag : {STR_CHIP, STR_SUBSYSTEM_TYPE, STR_DEVICE, STR_STORE, STR_ORDER,
                                       STR_LAYER_NUMBER, STR_FILE_TYPE, STR_LAYER_FILTER, STR_INSERT_MODE}) {
        if (const std::string value = context.GetTag(tag); !value.empty()) spare.SetTag(tag, value);
    }
    return spare;
}

/// Which layers a question takes.
struct LayerQuestion {
    std::optional<std::int32_t> layer;
    std::int32_t filter = -1;

    bool Takes(std::optional<std::int32_t> place) const {
        if (!layer) return place != LAYER_DEFAULTS;
        if (!place) return *layer > LAYER_DEFAULTS || filter > LAYER_DEFAULTS;
        if (*place == *layer || *place <= filter) return true;
        return *layer == LAYER_ALL_COMBINED && *place > LAYER_DEFAULTS && *place <= LAYER_MAXIMUM;
    }
};

int DeviceRank(const CStoreInfo& store) {
    switch (store.DeviceId()) {
        case IStoreManager::DEVICE_OTP:
            return 0;
        case IStoreManager::DEVICE_MTP:
            return 1;
        case IStoreManager::DEVICE_SMEM:
            return 2;
        case IStoreManager::DEVICE_EEPROM:
            return 3;
        default:
            return 4;
    }
}

}  // namespace

std::size_t CChipConfig::PlaceHash::operator()(const PlaceKey& key) const noexcept {
    std::uint64_t hash = static_cast<std::uint32_t>(key.type);
    for (const std::int32_t part : {key.device, key.store, key.layer.value_or(-1)}) {
        hash = hash * 0x9E3779B97F4A7C15ULL + static_cast<std::uint32_t>(part) + 1U;
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

CChipConfig::CChipConfig() = default;

CChipConfig::~CChipConfig() { ClearStoreList(mStores); }

void CChipConfig::OnReadStarted(IConfigReader& /*reader*/, IConfigContext& /*context*/) {}

void CChipConfig::OnSubsystemFound(IConfigReader& reader, IConfigContext& context) {
    reader.SetElementObserver(&PlaceOf(context));
}

void CChipConfig::OnSubsystemCompleted(IConfigReader& /*reader*/, IConfigContext& /*context*/) {}

void CChipConfig::OnReadEnded(IConfigReader& reader, IConfigContext& context) {
    auto* manager = dynamic_cast<IStoreManager*>(&reader);
    if (manager == nullptr) return;
    std::list<CStoreInfo*> stores;
    std::set<std::pair<std::int32_t, std::int32_t>> met;
    for (const CStoreInfo* store : manager->GetStoresInfo(context)) {
        stores.push_back(new CStoreInfo(*store));
        met.emplace(store->DeviceId(), store->StoreId());
    }
    std::erase_if(mStores, [&](CStoreInfo* known) {
        const bool again = met.contains({known->DeviceId(), known->StoreId()});
        if (again) delete known;
        return again;
    });
    const bool hasOthers = !mStores.empty();
    stores.splice(stores.end(), mStores);
    const auto comesBefore = [](const CStoreInfo* left, const CStoreInfo* right) {
        return DeviceRank(*left) < DeviceRank(*right);
    };
    if (hasOthers && !std::ranges::is_sorted(stores, comesBefore)) stores.sort(comesBefore);
    mStores = std::move(stores);
}

bool CChipConfig::OnElementFound(CElement* element, IConfigContext& context) {
    return PlaceOf(context).OnElementFound(element, context);
}

CChipConfig::PlaceKey CChipConfig::KeyOf(const CKesContext& place) {
    return {place.SubsystemType(), place.Device(), place.Store(), place.LayerNumber()};
}

CSubsystemConfig& CChipConfig::PlaceOf(IConfigContext& context) {
    CKesContext spare;
    const CKesContext& place = AsKesContext(context, spare);
    const PlaceKey key = KeyOf(place);
    if (mpLastPlace != nullptr && key == mLastKey) return *mpLastPlace;

    std::unique_ptr<CSubsystemConfig>& entry = mPlaces[key];
    if (!entry) {
        entry = std::make_unique<CSubsystemConfig>(place);
        char number[16];
        std::snprintf(number, sizeof number, "%010zu", mPlacesInOrder.size());
        mSubsystems.emplace(number, entry.get());
        mPlacesByType[key.type].push_back(entry.get());
        mPlacesInOrder.push_back(entry.get());
    }
    mLastKey = key;
    mpLastPlace = entry.get();
    return *entry;
}

bool CChipConfig::Write(IConfigWriter& writer, IConfigContext& context) {
    const std::uint64_t errorsBefore = CTheMsgHnd::ErrorsEver();
    writer.Begin(context);
    CKesContext spare;
    CKesContext walking = AsKesContext(context, spare);
    for (CSubsystemConfig* subsystem : mPlacesInOrder) {
        const CKesContext& place = subsystem->Place();
        walking.SetSubsystemType(place.SubsystemType());
        walking.SetDevice(place.Device());
        walking.SetStore(place.Store());
        walking.SetTag(STR_ORDER, place.GetTag(STR_ORDER));
        walking.SetTag(STR_LAYER_NUMBER, place.GetTag(STR_LAYER_NUMBER));
        writer.BeginSubsystem(walking);
        for (CElement* element : subsystem->Elements()) element->Write(writer, walking);
        writer.EndSubsystem(walking);
    }
    writer.End(context);
    return CTheMsgHnd::ErrorsEver() == errorsBefore;
}

const CElement& CChipConfig::Element(const std::string& key, IConfigContext& context) const {
    std::uint32_t psid = 0;
    std::vector<std::uint32_t> indices;
    if (!ParseKeyString(key, psid, indices)) return mNotFound;
    return Look(psid, indices, context);
}

const CElement& CChipConfig::Element(std::uint32_t psid, IConfigContext& context) const {
    return Look(psid, {}, context);
}

const CChipConfig::Places& CChipConfig::PlacesFor(const CKesContext& question) const {
    static const Places none;
    if (question.SubsystemType() == SUBSYSTEM_NONE) return mPlacesInOrder;
    const auto found = mPlacesByType.find(question.SubsystemType());
    return found == mPlacesByType.end() ? none : found->second;
}

const CElement& CChipConfig::Look(std::uint32_t psid, std::span<const std::uint32_t> indices,
                                  IConfigContext& context) const {
    CKesContext spare;
    const CKesContext& question = AsKesContext(context, spare);
    LayerQuestion layers{question.LayerNumber()};
    if (const std::string filter = question.GetTag(STR_LAYER_FILTER); !filter.empty()) {
        for (std::int32_t layer = LAYER_DEFAULTS; layer <= LAYER_ALL_COMBINED; ++layer) {
            if (question.TagMatches(STR_LAYER_FILTER, layer)) layers.filter = layer;
        }
    }
    const CElement* fallback = &mNotFound;
    const Places& places = PlacesFor(question);
    for (auto candidate = places.rbegin(); candidate != places.rend(); ++candidate) {
        const CKesContext& place = (*candidate)->Place();
        if (!layers.Takes(place.LayerNumber())) continue;
        if (question.HasDevice() && question.Device() != place.Device()) continue;
        if (question.HasStore() && question.Store() != place.Store()) continue;
        const CElement* element = (*candidate)->Find(psid, indices);
        if (element == nullptr) continue;
        if (place.LayerNumber() != LAYER_DEFAULTS) return *element;
        if (fallback == &mNotFound) fallback = element;
    }
    return *fallback;
}

void CChipConfig::PrepareForChip(std::uint16_t chipId) {
    Clear();
    mChipId = chipId;
}

void CChipConfig::Clear() {
    mpLastPlace = nullptr;
    mSubsystems.clear();
    mPlacesByType.clear();
    mPlacesInOrder.clear();
    mPlaces.clear();
    ClearStoreList(mStores);
    mChipId = 0;
}

std::optional<std::string> CChipConfig::FirstDifference(const CChipConfig& other) const {
    const auto describe = [](const CSubsystemConfig& place, const CElement* element) {
        const CKesContext& at = place.Place();
        std::string text = place.Type() < std::size(SUBSYSTEM_NAMES)
                               ? std::string(SUBSYSTEM_NAMES[place.Type()])
                               : "subsystem type " + std::to_string(place.Type());
        text += ", device " + std::to_string(at.Device()) + ", store " + std::to_string(at.Store());
        return element == nullptr ? text : text + ": " + element->ToString();
    };
    const auto counterpart = [](const CChipConfig& config, const CSubsystemConfig& place) {
        const auto found = config.mPlaces.find(KeyOf(place.Place()));
        return found == config.mPlaces.end() ? nullptr : found->second.get();
    };
    for (const CSubsystemConfig* place : mPlacesInOrder) {
        if (place->Elements().empty()) continue;
        const CSubsystemConfig* theirs = counterpart(other, *place);
        if (theirs == nullptr) return describe(*place, place->Elements().front());
        if (!place->Same(*theirs)) return describe(*place, place->FirstDifferent(*theirs));
    }
    for (const CSubsystemConfig* place : other.mPlacesInOrder) {
        if (place->Elements().empty()) continue;
        const CSubsystemConfig* mine = counterpart(*this, *place);
        if (mine == nullptr || mine->Elements().empty()) return describe(*place, place->Elements().front());
    }
    return std::nullopt;
}

bool CChipConfig::HasElements() const {
    return std::ranges::any_of(mPlacesInOrder,
                               [](const CSubsystemConfig* place) { return !place->Elements().empty(); });
}

bool CChipConfig::HasElements(SubSystemTypeEnum type) const {
    const auto found = mPlacesByType.find(type);
    if (found == mPlacesByType.end()) return false;
    return std::ranges::any_of(found->second,
                               [](const CSubsystemConfig* place) { return !place->Elements().empty(); });
}

bool CChipConfig::HasElements(std::uint32_t psid, SubSystemTypeEnum type, std::uint16_t layer) const {
    const auto found = mPlacesByType.find(type);
    if (found == mPlacesByType.end()) return false;
    const LayerQuestion layers{layer};
    return std::ranges::any_of(found->second, [&](const CSubsystemConfig* place) {
        return layers.Takes(place->Place().LayerNumber()) && !place->ElementsIsEmpty(psid);
    });
}

}  // namespace VemoKesConfigTools
