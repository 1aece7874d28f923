#include "model/CSubsystemConfig.h"

#include "model/CElement.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace VemoKesConfigTools {

std::size_t CSubsystemConfig::SlotHash::operator()(const Key& key) const noexcept {
    std::uint64_t hash = (key.psid + 1ULL) * 0x9E3779B97F4A7C15ULL;
    for (const std::uint32_t index : key.indices) {
        hash = (hash ^ (hash >> 29U) ^ (index + 1ULL)) * 0xBF58476D1CE4E5B9ULL;
    }
    return static_cast<std::size_t>(hash ^ (hash >> 32U));
}

bool CSubsystemConfig::SlotEqual::operator()(const Slot& left, const Slot& right) const noexcept {
    return left.hash == right.hash && (*this)(KeyOf(**left.first), right);
}

bool CSubsystemConfig::SlotEqual::operator()(const Key& left, const Slot& right) const noexcept {
    const Key other = KeyOf(**right.first);
    return left.psid == other.psid && std::ranges::equal(left.indices, other.indices);
}

CSubsystemConfig::Key CSubsystemConfig::KeyOf(const CElement& element) {
    return {element.PsId(), element.Indices()};
}

CSubsystemConfig::CSubsystemConfig(const CKesContext& context) : mContext(context) {}

CSubsystemConfig::~CSubsystemConfig() {
    for (const CElement* element : mElements) delete element;
}

bool CSubsystemConfig::OnElementFound(CElement* element, IConfigContext& context) {
    const auto last = mElements.insert(mElements.end(), element);
    const auto [slot, isNew] = mSlots.insert({last, SlotHash()(KeyOf(*element)), nullptr});
    if (isNew) {
        if (!element->Indices().empty()) ++mIndexedSlots[element->PsId()];
    } else if (context.TagMatches(STR_INSERT_MODE, STR_APPEND)) {
        if (!slot->others) slot->others = std::make_unique<std::vector<ElementList::iterator>>();
        slot->others->push_back(last);
    } else {
        mElements.erase(last);
        DropOthers(*slot);
        delete std::exchange(*slot->first, element);
    }
    return true;
}

void CSubsystemConfig::Reserve(std::size_t keys) {
    // A place that holds some already grows by itself, in steps that do not depend on how many come.
    if (mSlots.empty()) mSlots.reserve(keys);
}

bool CSubsystemConfig::ElementsIsEmpty(std::uint32_t psid) const {
    return !mSlots.contains(Key{psid, {}}) && !mIndexedSlots.contains(psid);
}

void CSubsystemConfig::RemoveElement(std::uint32_t psid, const std::vector<std::uint32_t>* indices) {
    const auto found =
        mSlots.find(Key{psid, indices ? std::span(*indices) : std::span<const std::uint32_t>()});
    if (found == mSlots.end()) return;
    DropOthers(*found);
    const auto first = found->first;
    const std::unique_ptr<const CElement> element(*first);
    mSlots.erase(found);
    mElements.erase(first);
    if (element->Indices().empty()) return;
    const auto count = mIndexedSlots.find(psid);
    if (--count->second == 0) mIndexedSlots.erase(count);
}

void CSubsystemConfig::DropOthers(const Slot& slot) {
    if (!slot.others) return;
    for (const ElementList::iterator other : *slot.others) {
        delete *other;
        mElements.erase(other);
    }
    slot.others.reset();
}

bool CSubsystemConfig::Same(const CSubsystemConfig& other) const {
    return mContext.SubsystemType() == other.mContext.SubsystemType() &&
           mContext.Device() == other.mContext.Device() && mContext.Store() == other.mContext.Store() &&
           mContext.LayerNumber() == other.mContext.LayerNumber() &&
           mElements.size() == other.mElements.size() && FirstDifferent(other) == nullptr;
}

const CElement* CSubsystemConfig::FirstDifferent(const CSubsystemConfig& other) const {
    const auto differs = [&](const CElement* element) {
        const auto mine = mSlots.find(KeyOf(*element));
        // The others of a key are compared with the first.
        if (*mine->first != element) return false;
        const auto theirs = other.mSlots.find(KeyOf(*element));
        return theirs == other.mSlots.end() || !SameElements(*mine, *theirs);
    };
    const auto found = std::ranges::find_if(mElements, differs);
    return found == mElements.end() ? nullptr : *found;
}

bool CSubsystemConfig::SameElements(const Slot& left, const Slot& right) {
    static const std::vector<ElementList::iterator> none;
    const auto& more = left.others ? *left.others : none;
    const auto& others = right.others ? *right.others : none;
    return **left.first == **right.first &&
           std::ranges::equal(more, others, [](const auto& a, const auto& b) { return **a == **b; });
}

CElement* CSubsystemConfig::Find(std::uint32_t psid, std::span<const std::uint32_t> indices) const {
    const auto found = mSlots.find(Key{psid, indices});
    if (found == mSlots.end()) return nullptr;
    return found->others ? *found->others->back() : *found->first;
}

}  // namespace VemoKesConfigTools
