#include "model/CSubsystemConfig.h"

#include "model/CElement.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace VemoKesConfigTools {

CSubsystemConfig::CSubsystemConfig(const CKesContext& context) : mContext(context) {}

CSubsystemConfig::~CSubsystemConfig() {
    for (const CElement* element : mElements) delete element;
}

bool CSubsystemConfig::OnElementFound(CElement* element, IConfigContext& context) {
    const Key key = CKeyTable::KeyOf(*element);
    const ElementList::iterator* first = mFirsts.Find(key);
    if (first == nullptr) {
        mFirsts.Insert(key, mElements.insert(mElements.end(), element));
        if (!key.indices.empty()) ++mIndexedKeys[key.psid];
    } else if (context.TagMatches(STR_INSERT_MODE, STR_APPEND)) {
        mOthers[&**first].push_back(mElements.insert(mElements.end(), element));
    } else {
        DropOthers(*first);
        delete std::exchange(**first, element);
    }
    return true;
}

void CSubsystemConfig::Reserve(std::size_t keys) {
    // A place that holds some already grows by itself, in steps that do not depend on how many come.
    if (mElements.empty()) mFirsts.Reserve(keys);
}

bool CSubsystemConfig::ElementsIsEmpty(std::uint32_t psid) const {
    return mFirsts.Find(Key{psid, {}}) == nullptr && !mIndexedKeys.contains(psid);
}

void CSubsystemConfig::RemoveElement(std::uint32_t psid, const std::vector<std::uint32_t>* indices) {
    const Key key{psid, indices ? std::span(*indices) : std::span<const std::uint32_t>()};
    const ElementList::iterator* found = mFirsts.Find(key);
    if (found == nullptr) return;
    const auto first = *found;
    DropOthers(first);
    mFirsts.Erase(key);
    const std::unique_ptr<const CElement> element(*first);
    mElements.erase(first);
    if (element->Indices().empty()) return;
    const auto count = mIndexedKeys.find(psid);
    if (--count->second == 0) mIndexedKeys.erase(count);
}

const CSubsystemConfig::Positions& CSubsystemConfig::OthersOf(ElementList::iterator first) const {
    static const Positions none;
    const auto found = mOthers.find(&*first);
    return found == mOthers.end() ? none : found->second;
}

void CSubsystemConfig::DropOthers(ElementList::iterator first) {
    if (mOthers.empty()) return;
    for (const auto other : OthersOf(first)) {
        delete *other;
        mElements.erase(other);
    }
    mOthers.erase(&*first);
}

bool CSubsystemConfig::Same(const CSubsystemConfig& other) const {
    return mContext.SubsystemType() == other.mContext.SubsystemType() &&
           mContext.Device() == other.mContext.Device() && mContext.Store() == other.mContext.Store() &&
           mContext.LayerNumber() == other.mContext.LayerNumber() &&
           mElements.size() == other.mElements.size() && FirstDifferent(other) == nullptr;
}

const CElement* CSubsystemConfig::FirstDifferent(const CSubsystemConfig& other) const {
    const auto differs = [&](const CElement* element) {
        const Key key = CKeyTable::KeyOf(*element);
        const auto mine = *mFirsts.Find(key);
        // The others of a key are compared with the first.
        if (*mine != element) return false;
        const auto* theirs = other.mFirsts.Find(key);
        return theirs == nullptr || !SameElements(mine, other, *theirs);
    };
    const auto found = std::ranges::find_if(mElements, differs);
    return found == mElements.end() ? nullptr : *found;
}

bool CSubsystemConfig::SameElements(ElementList::iterator mine, const CSubsystemConfig& other,
                                    ElementList::iterator theirs) const {
    return **mine == **theirs && std::ranges::equal(OthersOf(mine), other.OthersOf(theirs),
                                                    [](const auto& a, const auto& b) { return **a == **b; });
}

CElement* CSubsystemConfig::Find(std::uint32_t psid, std::span<const std::uint32_t> indices) const {
    const auto* first = mFirsts.Find(Key{psid, indices});
    if (first == nullptr) return nullptr;
    const Positions& others = OthersOf(*first);
    return others.empty() ? **first : *others.back();
}

}  // namespace VemoKesConfigTools
