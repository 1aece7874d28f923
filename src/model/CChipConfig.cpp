#include "model/CChipConfig.h"

#include "messages/CTheMsgHnd.h"
#include "model/CChangeLog.h"
#include "model/CStoreInfo.h"
#include "model/CSubsystemConfig.h"
#include "model/IConfigReader.h"
#include "model/IConfigWriter.h"
#include "model/PlaceWords.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iterator>
#include <map>
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

/// The highest layer that the filter lets in, -1 without one.
std::int32_t FilterOf(const CKesContext& question) {
    const std::string text = question.GetTag(STR_LAYER_FILTER);
    std::int32_t filter = -1;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), filter);
    return error == std::errc() && end == text.data() + text.size() ? filter : -1;
}

/// Which layers a question takes.
struct LayerQuestion {
    std::optional<std::int32_t> layer;
    std::int32_t filter = -1;

    bool Takes(std::optional<std::int32_t> place) const {
        if (!layer) return place != LAYER_DEFAULTS || filter >= LAYER_DEFAULTS;
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

bool SameStore(const CStoreInfo& left, const CStoreInfo& right) {
    return left.DeviceId() == right.DeviceId() && left.StoreId() == right.StoreId();
}

}  // namespace

std::size_t CChipConfig::PlaceHash::operator()(const PlaceKey& key) const noexcept {
    std::uint64_t hash = static_cast<std::uint32_t>(key.type);
    for (const std::int32_t part : {key.device, key.store, key.layer.value_or(-1)}) {
        hash = hash * 0x9E3779B97F4A7C15ULL + static_cast<std::uint32_t>(part) + 1U;
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

CChipConfig::CChipConfig() : mpLog(std::make_unique<CChangeLog>()) {}

CChipConfig::~CChipConfig() { ClearStoreList(mStores); }

void CChipConfig::OnReadStarted(IConfigReader& /*reader*/, IConfigContext& /*context*/) {}

void CChipConfig::OnSubsystemFound(IConfigReader& reader, IConfigContext& context) {
    reader.SetElementObserver(&PlaceOf(context));
}

void CChipConfig::OnSubsystemCompleted(IConfigReader& /*reader*/, IConfigContext& /*context*/) {}

void CChipConfig::OnReadEnded(IConfigReader& reader, IConfigContext& context) {
    auto* manager = dynamic_cast<IStoreManager*>(&reader);
    if (manager == nullptr) return;
    if (mpLog->IsOpen() && !mpLog->storesBefore) {
        std::vector<CStoreInfo>& before = mpLog->storesBefore.emplace();
        for (const CStoreInfo* store : mStores) before.push_back(*store);
    }
    std::list<CStoreInfo*> stores;
    std::map<std::pair<std::int32_t, std::int32_t>, CStoreInfo*> met;
    for (const CStoreInfo* store : manager->GetStoresInfo(context)) {
        stores.push_back(new CStoreInfo(*store));
        met.try_emplace({store->DeviceId(), store->StoreId()}, stores.back());
    }
    std::erase_if(mStores, [&](CStoreInfo* known) {
        const auto again = met.find({known->DeviceId(), known->StoreId()});
        if (again == met.end()) return false;
        again->second->FillFrom(*known);
        delete known;
        return true;
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
        entry = std::make_unique<CSubsystemConfig>(place, mpLog.get());
        const std::size_t before = mSubsystems.empty() ? 0 : std::stoul(mSubsystems.rbegin()->first) + 1;
        char number[16];
        std::snprintf(number, sizeof number, "%010zu", before);
        mSubsystems.emplace_hint(mSubsystems.end(), number, entry.get());
        mPlacesByType[key.type].push_back(entry.get());
        mPlacesInOrder.push_back(entry.get());
        if (mpLog->IsOpen()) mpLog->newPlaces.push_back(entry.get());
    }
    mLastKey = key;
    mpLastPlace = entry.get();
    return *entry;
}

void CChipConfig::BeginTransaction() { mpLog->Open(); }

void CChipConfig::EndTransaction(bool keep) {
    if (!keep) mpLog->UndoKeys();
    bool removed = false;
    for (const CSubsystemConfig* place : mpLog->newPlaces) {
        if (!place->Elements().empty()) continue;
        RemovePlace(*place);
        removed = true;
    }
    if (mpLog->storesBefore && !keep) {
        ClearStoreList(mStores);
        for (const CStoreInfo& store : *mpLog->storesBefore) mStores.push_back(new CStoreInfo(store));
    } else if (mpLog->storesBefore && removed) {
        std::erase_if(mStores, [&](const CStoreInfo* store) {
            const bool known = std::ranges::any_of(
                *mpLog->storesBefore, [&](const CStoreInfo& other) { return SameStore(other, *store); });
            if (known || HasPlaceOn(*store)) return false;
            delete store;
            return true;
        });
    }
    mpLog->Close();
}

void CChipConfig::RemovePlace(const CSubsystemConfig& place) {
    if (mpLastPlace == &place) mpLastPlace = nullptr;
    const PlaceKey key = KeyOf(place.Place());
    const auto sameType = mPlacesByType.find(key.type);
    std::erase(sameType->second, &place);
    if (sameType->second.empty()) mPlacesByType.erase(sameType);
    std::erase(mPlacesInOrder, &place);
    std::erase_if(mSubsystems, [&](const auto& entry) { return entry.second == &place; });
    mPlaces.erase(key);
}

bool CChipConfig::HasPlaceOn(const CStoreInfo& store) const {
    return std::ranges::any_of(mPlacesInOrder, [&](const CSubsystemConfig* place) {
        return place->Place().Device() == store.DeviceId() && place->Place().Store() == store.StoreId();
    });
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
    const LayerQuestion layers{question.LayerNumber(), FilterOf(question)};
    const CElement* newest = &mNotFound;
    const CElement* newestDefault = &mNotFound;
    for (const CSubsystemConfig* candidate : PlacesFor(question)) {
        const CKesContext& place = candidate->Place();
        if (!layers.Takes(place.LayerNumber())) continue;
        if (question.HasDevice() && question.Device() != place.Device()) continue;
        if (question.HasStore() && question.Store() != place.Store()) continue;
        const CElement* element = candidate->Find(psid, indices);
        if (element == nullptr) continue;
        const CElement*& best = place.LayerNumber() == LAYER_DEFAULTS ? newestDefault : newest;
        if (element->WriteNumber() > best->WriteNumber()) best = element;
    }
    return newest->IsValid() ? *newest : *newestDefault;
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
        const std::string text = DescribePlace(place.Place());
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
