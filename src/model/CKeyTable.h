#pragma once

#include "messages/Export.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <span>
#include <vector>

namespace VemoKesConfigTools {

class CElement;

/// Finds the first element of a key in a list of elements, in constant time. The key is read off the element,
/// so that it is not stored twice, and the table is one array: a place may hold a million keys, and looking
/// one up must not run through memory. Does not own what it points at.
class KES_API CKeyTable {
public:
    using Position = std::list<CElement*>::iterator;
    struct Key {
        std::uint32_t psid;
        std::span<const std::uint32_t> indices;
    };

    static Key KeyOf(const CElement& element);

    /// Where the key's first element is; null when it is not there. Valid until the table changes.
    const Position* Find(const Key& key) const;
    /// Adds the first element of a key that is not there.
    void Insert(const Key& key, Position first);
    /// Forgets a key that is there.
    void Erase(const Key& key);
    /// Makes room for this many keys in all.
    void Reserve(std::size_t keys);

private:
    struct Entry {
        Position first;
        std::uint32_t hash = FREE;
    };
    static constexpr std::uint32_t FREE = 0;

    static std::uint32_t HashOf(const Key& key);
    std::size_t HomeOf(std::uint32_t hash) const {
        return static_cast<std::size_t>(static_cast<std::uint64_t>(hash) * mEntries.size() >> 32U);
    }
    std::size_t Next(std::size_t i) const { return i + 1 == mEntries.size() ? 0 : i + 1; }
    std::size_t Search(const Key& key, std::uint32_t hash) const;
    void Resize(std::size_t size);

    std::vector<Entry>
        mEntries;  ///< open addressing: a key stands at its home or in the unbroken run behind it
    std::size_t mCount = 0;
};

}  // namespace VemoKesConfigTools
