#include "model/CSubsystemConfig.h"

#include "model/CChangeLog.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

namespace VemoKesConfigTools {

CSubsystemConfig::CSubsystemConfig(const CKesContext& context, CChangeLog* log)
    : mContext(context), mpLog(log) {}

CSubsystemConfig::~CSubsystemConfig() {
    for (const CElement* element : mElements) delete element;
}

CSubsystemConfig::KeyChange::~KeyChange() {
    for (const CElement* element : taken) delete element;
}

bool CSubsystemConfig::OnElementFound(CElement* element, IConfigContext& context) {
    if (mpLog != nullptr) element->SetWriteNumber(mpLog->NextWriteNumber());
    const Key key = CKeyTable::KeyOf(*element);
    const ElementList::iterator* first = mFirsts.Find(key);
    if (first == nullptr) {
        const auto node = mElements.insert(mElements.end(), element);
        mFirsts.Insert(key, node);
        CountIndexed(key);
        if (IsLogged()) mpLog->Record({KeyChange::Kind::ADDED, *this, node});
    } else if (context.TagMatches(STR_INSERT_MODE, STR_APPEND)) {
        const auto node = mElements.insert(mElements.end(), element);
        mOthers[&**first].push_back(node);
        if (IsLogged()) mpLog->Record({KeyChange::Kind::ADDED, *this, node});
    } else {
        KeyChange change(KeyChange::Kind::REPLACED, *this, *first);
        TakeOthers(change);
        change.replaced.reset(std::exchange(*change.node, element));
        if (IsLogged()) mpLog->Record(std::move(change));
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
    KeyChange change(KeyChange::Kind::REMOVED, *this, *found);
    TakeOthers(change);
    mFirsts.Erase(key);
    UncountIndexed(key);
    TakeNode(change, change.node);
    if (IsLogged()) mpLog->Record(std::move(change));
}

void CSubsystemConfig::CountIndexed(const Key& key) {
    if (!key.indices.empty()) ++mIndexedKeys[key.psid];
}

void CSubsystemConfig::UncountIndexed(const Key& key) {
    if (key.indices.empty()) return;
    const auto count = mIndexedKeys.find(key.psid);
    if (--count->second == 0) mIndexedKeys.erase(count);
}

bool CSubsystemConfig::IsLogged() const { return mpLog != nullptr && mpLog->IsOpen(); }

void CSubsystemConfig::TakeNode(KeyChange& change, ElementList::iterator node) {
    change.followers.push_back(std::next(node));
    change.taken.splice(change.taken.end(), mElements, node);
}

void CSubsystemConfig::TakeOthers(KeyChange& change) {
    if (mOthers.empty()) return;
    const auto others = mOthers.find(&*change.node);
    if (others == mOthers.end()) return;
    for (const auto node : others->second) TakeNode(change, node);
    mOthers.erase(others);
}

void CSubsystemConfig::TakeBack(KeyChange& change) {
    using enum KeyChange::Kind;
    const auto node = change.node;
    if (change.kind == ADDED) {
        const std::unique_ptr<const CElement> element(*node);
        const Key key = CKeyTable::KeyOf(*element);
        if (const auto first = *mFirsts.Find(key); first != node) {
            Positions& others = mOthers[&*first];
            others.pop_back();
            if (others.empty()) mOthers.erase(&*first);
        } else {
            mFirsts.Erase(key);
            UncountIndexed(key);
        }
        mElements.erase(node);
        return;
    }
    if (change.kind == REPLACED) delete std::exchange(*node, change.replaced.release());
    // A node that went out later stood in a list without those before it, so it goes back first.
    Positions others;
    for (; !change.taken.empty(); change.followers.pop_back()) {
        const auto last = std::prev(change.taken.end());
        if (last != node) others.push_back(last);
        mElements.splice(change.followers.back(), change.taken, last);
    }
    std::ranges::reverse(others);
    if (!others.empty()) mOthers.emplace(&*node, std::move(others));
    if (change.kind == REMOVED) {
        const Key key = CKeyTable::KeyOf(**node);
        mFirsts.Insert(key, node);
        CountIndexed(key);
    }
}

const CSubsystemConfig::Positions& CSubsystemConfig::OthersOf(ElementList::iterator first) const {
    static const Positions none;
    const auto found = mOthers.find(&*first);
    return found == mOthers.end() ? none : found->second;
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
