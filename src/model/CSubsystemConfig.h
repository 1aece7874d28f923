#pragma once

#include "messages/Export.h"
#include "model/CKesContext.h"
#include "model/IConfigReaderElementObserver.h"

#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace VemoKesConfigTools {

class CElement;

/// The keys of one place, which it owns, in their order of arrival. Lookup, replacement and removal take
/// constant time.
class KES_API CSubsystemConfig final : public IConfigReaderElementObserver {
public:
    using ElementList = std::list<CElement*>;

    /// An empty place. The context is the copy that the place keeps.
    explicit CSubsystemConfig(const CKesContext& context);
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
    struct Key {
        std::uint32_t psid;
        std::span<const std::uint32_t> indices;
    };
    /// The elements of one key. The key is read off the first of them, so that it is not stored twice.
    struct Slot {
        ElementList::iterator first;
        std::size_t hash;  ///< kept, so that no element has to be looked at to find another
        mutable std::unique_ptr<std::vector<ElementList::iterator>> others;
    };
    struct SlotHash {
        using is_transparent = void;
        std::size_t operator()(const Key& key) const noexcept;
        std::size_t operator()(const Slot& slot) const noexcept { return slot.hash; }
    };
    struct SlotEqual {
        using is_transparent = void;
        bool operator()(const Slot& left, const Slot& right) const noexcept;
        bool operator()(const Key& left, const Slot& right) const noexcept;
        bool operator()(const Slot& left, const Key& right) const noexcept { return (*this)(right, left); }
    };

    static Key KeyOf(const CElement& element);
    static bool SameElements(const Slot& left, const Slot& right);
    void DropOthers(const Slot& slot);

    CKesContext mContext;
    ElementList mElements;
    std::unordered_set<Slot, SlotHash, SlotEqual> mSlots;
    std::unordered_map<std::uint32_t, std::uint32_t>
        mIndexedSlots;  ///< how many slots with indexes a psid has
};

}  // namespace VemoKesConfigTools
