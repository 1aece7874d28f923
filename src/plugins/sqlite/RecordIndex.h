#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace VemoKesConfigTools {

/// A hash index of records, which are identified by numbers. It is one array of small entries, so that a
/// lookup costs little more than reading the record itself.
class CRecordIndex {
public:
    static constexpr std::uint32_t NONE = 0xFFFFFFFF;

    /// Has room for exactly this many records.
    explicit CRecordIndex(std::size_t records) : mEntries(records + records / 2 + 1) {}

    /// The first record added with this hash for which `isIt` returns true; `NONE` if there is none.
    template <typename IsIt>
    std::uint32_t Find(std::uint32_t hash, IsIt isIt) const {
        std::size_t i = HomeOf(hash);
        for (; mEntries[i].record != NONE; i = Next(i)) {
            if (mEntries[i].hash == hash && isIt(mEntries[i].record)) break;
        }
        return mEntries[i].record;
    }
    void Add(std::uint32_t hash, std::uint32_t record) {
        std::size_t i = HomeOf(hash);
        while (mEntries[i].record != NONE) i = Next(i);
        mEntries[i] = {hash, record};
    }

private:
    struct Entry {
        std::uint32_t hash = 0;
        std::uint32_t record = NONE;
    };
    std::size_t HomeOf(std::uint32_t hash) const {
        return static_cast<std::size_t>(static_cast<std::uint64_t>(hash) * mEntries.size() >> 32U);
    }
    std::size_t Next(std::size_t i) const { return i + 1 == mEntries.size() ? 0 : i + 1; }

    std::vector<Entry> mEntries;  ///< open addressing; always has a free entry, which ends a search
};

}  // namespace VemoKesConfigTools
