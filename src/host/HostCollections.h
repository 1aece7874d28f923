#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace VEMO::Kes::ConfigurationTools {

/// A shared reference to a list or map of the host API; may be null. Iterate over the reference itself, as in
/// `for (const auto& chip : provider.GetChips())`: the container then lives as long as the loop, and null
/// iterates like an empty container.
template <typename Container>
class HostRef : public std::shared_ptr<Container> {
public:
    using std::shared_ptr<Container>::shared_ptr;
    HostRef(std::shared_ptr<Container> container) : std::shared_ptr<Container>(std::move(container)) {}

    auto begin() const { return Items().begin(); }
    auto end() const { return Items().end(); }

private:
    const Container& Items() const {
        static const Container none;
        return *this == nullptr ? none : **this;
    }
};

template <typename T>
using HostListRef = HostRef<std::vector<T>>;

/// A map of the host API: iterates in insertion order and finds by key. Adding a key twice and asking for a
/// missing key throw; both leave the map unchanged.
template <typename Key, typename Value>
class HostMap {
public:
    using Entry = std::pair<Key, Value>;
    using const_iterator = typename std::vector<Entry>::const_iterator;

    /// Throws `std::invalid_argument` if the key already exists.
    void Add(Key key, Value value) {
        // Keys are mostly added in ascending order, for which the hint makes this constant time.
        const std::size_t before = mPositions.size();
        const auto position = mPositions.emplace_hint(mPositions.end(), key, mEntries.size());
        if (mPositions.size() == before) throw std::invalid_argument("the map already contains this key");
        try {
            mEntries.emplace_back(std::move(key), std::move(value));
        } catch (...) {
            mPositions.erase(position);
            throw;
        }
    }
    /// Throws `std::out_of_range` if the key is missing.
    const Value& Item(const Key& key) const {
        const Value* value = Find(key);
        if (value == nullptr) throw std::out_of_range("the map does not contain this key");
        return *value;
    }
    /// The value of a key; null if the key is missing.
    const Value* Find(const Key& key) const {
        const auto found = mPositions.find(key);
        return found == mPositions.end() ? nullptr : &mEntries[found->second].second;
    }
    bool Contains(const Key& key) const { return mPositions.contains(key); }
    std::size_t Count() const { return mEntries.size(); }
    const_iterator begin() const { return mEntries.begin(); }
    const_iterator end() const { return mEntries.end(); }

private:
    std::vector<Entry> mEntries;
    std::map<Key, std::size_t> mPositions;
};

template <typename Key, typename Value>
using HostMapRef = HostRef<HostMap<Key, Value>>;

}  // namespace VEMO::Kes::ConfigurationTools
