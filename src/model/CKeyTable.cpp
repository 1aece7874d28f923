#include "model/CKeyTable.h"

#include "model/CElement.h"

#include <algorithm>
#include <utility>

namespace VemoKesConfigTools {

namespace {

constexpr std::size_t LEAST_SIZE = 16;

/// The table is full when it holds more than four fifths of its size.
bool IsTooFull(std::size_t count, std::size_t size) { return count * 5 > size * 4; }

}  // namespace

CKeyTable::Key CKeyTable::KeyOf(const CElement& element) { return {element.PsId(), element.Indices()}; }

std::uint32_t CKeyTable::HashOf(const Key& key) {
    std::uint64_t hash = (key.psid + 1ULL) * 0x9E3779B97F4A7C15ULL;
    for (const std::uint32_t index : key.indices) {
        hash = (hash ^ (hash >> 29U) ^ (index + 1ULL)) * 0xBF58476D1CE4E5B9ULL;
    }
    const auto high = static_cast<std::uint32_t>(hash >> 32U);
    return high == FREE ? 1 : high;
}

/// The entry of the key, or the free one where it would go. There is always a free one.
std::size_t CKeyTable::Search(const Key& key, std::uint32_t hash) const {
    std::size_t i = HomeOf(hash);
    for (; mEntries[i].hash != FREE; i = Next(i)) {
        if (mEntries[i].hash != hash) continue;
        const CElement& element = **mEntries[i].first;
        if (element.PsId() == key.psid && std::ranges::equal(element.Indices(), key.indices)) break;
    }
    return i;
}

const CKeyTable::Position* CKeyTable::Find(const Key& key) const {
    if (mCount == 0) return nullptr;
    const Entry& entry = mEntries[Search(key, HashOf(key))];
    return entry.hash == FREE ? nullptr : &entry.first;
}

void CKeyTable::Insert(const Key& key, Position first) {
    if (IsTooFull(mCount + 1, mEntries.size())) Resize(std::max(LEAST_SIZE, mEntries.size() * 2));
    const std::uint32_t hash = HashOf(key);
    mEntries[Search(key, hash)] = {first, hash};
    ++mCount;
    // Keys mostly come in ascending order, so the entry where the next one goes can be fetched meanwhile: in
    // a large table it is in no cache.
    __builtin_prefetch(&mEntries[HomeOf(HashOf({key.psid + 1, {}}))]);
}

void CKeyTable::Erase(const Key& key) {
    std::size_t hole = Search(key, HashOf(key));
    // The run behind closes up: an entry moves into the hole unless that would put it in front of its home.
    for (std::size_t i = Next(hole); mEntries[i].hash != FREE; i = Next(i)) {
        const std::size_t home = HomeOf(mEntries[i].hash);
        const bool homeBehindHole = hole <= i ? home > hole && home <= i : home > hole || home <= i;
        if (homeBehindHole) continue;
        mEntries[hole] = mEntries[i];
        hole = i;
    }
    mEntries[hole] = Entry();
    --mCount;
}

void CKeyTable::Reserve(std::size_t keys) {
    const std::size_t size = keys + keys / 4 + 1;
    if (size > mEntries.size()) Resize(std::max(LEAST_SIZE, size));
}

void CKeyTable::Resize(std::size_t size) {
    const std::vector<Entry> old = std::exchange(mEntries, std::vector<Entry>(size));
    for (const Entry& entry : old) {
        if (entry.hash == FREE) continue;
        std::size_t i = HomeOf(entry.hash);
        while (mEntries[i].hash != FREE) i = Next(i);
        mEntries[i] = entry;
    }
}

}  // namespace VemoKesConfigTools
