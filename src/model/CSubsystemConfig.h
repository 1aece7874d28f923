#pragma once

#include "messages/Export.h"
#include "model/CElement.h"
#include "model/CKesContext.h"
#include "model/CKeyTable.h"
#include "model/IConfigReaderElementObserver.h"

#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace VemoKesConfigTools {

class CChangeLog;

/// The keys of one place, which it owns, in their order of arrival. Lookup, replacement and removal take
/// constant time.
class KES_API CSubsystemConfig final : public IConfigReaderElementObserver {
public:
    using ElementList = std::list<CElement*>;

    /// What one change of a key took from its place, with all that it takes to put it back.
    struct KeyChange;

    /// An empty place. The context is the copy that the place keeps. The log is that of the configuration,
    /// not owned; a place that stands alone has none.
    explicit CSubsystemConfig(const CKesContext& context, CChangeLog* log = nullptr);
    CSubsystemConfig(const CSubsystemConfig&) = delete;
    CSubsystemConfig& operator=(const CSubsystemConfig&) = delete;
    ~CSubsystemConfig() override;

    /// Takes over the element. With the insert mode "append" it goes behind those of its key; otherwise it
    /// replaces every element of its key, at the position of the first.
    bool OnElementFound(CElement* element, IConfigContext& context) override;
    /// Makes room for this many keys in an empty place, for readers that know how many come.
    void Reserve(std::size_t keys);

    /// The subsystem type, low 16 bits.
    std::uint16_t Type() const { return static_cast<std::uint16_t>(mContext.SubsystemType()); }
    const ElementList& Elements() const { return mElements; }
    /// Whether no element has this psid, with or without indexes.
    bool ElementsIsEmpty(std::uint32_t psid) const;
    /// What the reading context said when the place was first met.
    CBaseContext& Context() { return mContext; }
    const CKesContext& Place() const { return mContext; }
    /// Removes every element of this key. Null indices are none.
    void RemoveElement(std::uint32_t psid, const std::vector<std::uint32_t>* indices);
    /// Whether both are of one place and hold equal elements of each key. The order of keys does not count.
    bool Same(const CSubsystemConfig& other) const;
    /// The first element whose key the other place does not hold with equal values; null when it is the other
    /// that has one more, or none differs.
    const CElement* FirstDifferent(const CSubsystemConfig& other) const;
    /// The newest element of a key, null when there is none.
    CElement* Find(std::uint32_t psid, std::span<const std::uint32_t> indices) const;

private:
    friend class CChangeLog;
    using Key = CKeyTable::Key;
    using Positions = std::vector<ElementList::iterator>;

    bool IsLogged() const;
    void TakeBack(KeyChange& change);

    const Positions& OthersOf(ElementList::iterator first) const;
    bool SameElements(ElementList::iterator mine, const CSubsystemConfig& other,
                      ElementList::iterator theirs) const;
    void TakeOthers(KeyChange& change);
    void TakeNode(KeyChange& change, ElementList::iterator node);
    void CountIndexed(const Key& key);
    void UncountIndexed(const Key& key);

    CKesContext mContext;
    CChangeLog* mpLog;
    ElementList mElements;
    CKeyTable mFirsts;
    /// The further elements of keys that have several, by the entry of the first in the list.
    std::unordered_map<const void*, Positions> mOthers;
    std::unordered_map<std::uint32_t, std::uint32_t> mIndexedKeys;  ///< how many keys with indexes a psid has
};

struct KES_API CSubsystemConfig::KeyChange {
    enum class Kind { ADDED, REPLACED, REMOVED };

    KeyChange(Kind is, CSubsystemConfig& at, ElementList::iterator which)
        : kind(is), place(&at), node(which) {}
    KeyChange(KeyChange&& other) noexcept = default;
    KeyChange& operator=(KeyChange&&) = delete;
    ~KeyChange();

    Kind kind;
    CSubsystemConfig* place;
    ElementList::iterator node;          ///< of the element that was added, or of the first one of the key
    std::unique_ptr<CElement> replaced;  ///< what stood in the node before
    ElementList taken;                   ///< the nodes that went out of the list, in that order
    Positions followers;                 ///< in front of which each of them stood
};

}  // namespace VemoKesConfigTools
