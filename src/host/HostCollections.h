#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace VEMO::Kes::ConfigurationTools {

/// A reference to a list or map of the host API: shared between all who hold it, and may be null. Walk over
/// the reference itself, as in `for (const auto& chip : provider.GetChips())`: it then lives as long as the
/// walk, and null is walked over like an empty one.
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

/// A map of the host API: walks in the order of insertion and finds by key. A key can be added once, and only
/// keys that are there can be asked for; both failures leave the map as it was.
template <typename Key, typename Value>
class HostMap {
public:
    using Entry = std::pair<Key, Value>;
    using const_iterator = typename std::vector<Entry>::const_iterator;

    /// Throws `std::invalid_argument` when the key is there already.
    void Add(Key key, Value value) {
        // Keys mostly come in ascending order.
        const std::size_t before = mPositions.size();
        const auto position = mPositions.emplace_hint(mPositions.end(), key, mEntries.size());
        if (mPositions.size() == before) throw std::invalid_argument("the map holds this key already");
        try {
            mEntries.emplace_back(std::move(key), std::move(value));
        } catch (...) {
            mPositions.erase(position);
            throw;
        }
    }
    /// Throws `std::out_of_range` when the key is not there.
    const Value& Item(const Key& key) const {
        const Value* value = Find(key);
        if (value == nullptr) throw std::out_of_range("the map does not hold this key");
        return *value;
    }
    /// The value of a key, null when it is not there.
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
