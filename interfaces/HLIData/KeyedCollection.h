#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "HLIData/Error.h"

namespace HLIData {

/// The one container of the system: shared objects in the order in which they were put, found by text key or
/// by position.
///
/// Positions count from 1. Keys compare exactly, case included; an empty key means that the item has none.
/// Every list that crosses an interface is one of these, handed out by reference: the service's caches and
/// its callers share the same collection object, therefore it cannot be copied. `T` is the interface under
/// which clients see the items.
///
/// Finding by key or position takes constant time on average, adding at the end too; inserting and removing
/// elsewhere moves the items behind. Every failing call leaves the collection as it was. Raises Error:
/// UnknownKey, BadPosition, DuplicateKey, ObjectNotSet (an empty reference as item), Overflow (more items
/// than positions can count).
template <typename T>
class KeyedCollection {
  struct Entry {
    std::shared_ptr<T> item;
    const std::string* key;  // the key in m_byKey, whose nodes stay put; nullptr for an item without key
  };
  using Entries = std::vector<Entry>;

 public:
  /// Walks the items in order. Any change of the collection ends its validity; see Items().
  class const_iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = std::shared_ptr<T>;
    using difference_type = std::ptrdiff_t;
    using pointer = const value_type*;
    using reference = const value_type&;

    const_iterator() = default;
    reference operator*() const { return m_at->item; }
    pointer operator->() const { return &m_at->item; }
    const_iterator& operator++() {
      ++m_at;
      return *this;
    }
    const_iterator operator++(int) {
      const_iterator before = *this;
      ++m_at;
      return before;
    }
    friend bool operator==(const const_iterator&, const const_iterator&) = default;

   private:
    friend class KeyedCollection;
    explicit const_iterator(typename Entries::const_iterator at) : m_at(at) {}

    typename Entries::const_iterator m_at{};
  };

  KeyedCollection() = default;
  KeyedCollection(const KeyedCollection&) = delete;
  KeyedCollection& operator=(const KeyedCollection&) = delete;

  std::int32_t Count() const { return static_cast<std::int32_t>(m_entries.size()); }

  /// Puts an item at the end.
  void Add(std::shared_ptr<T> item, std::string_view key = {}) {
    Insert(m_entries.size(), std::move(item), key);
  }
  /// Puts an item before the one at `position`, which must exist.
  void InsertBefore(std::int32_t position, std::shared_ptr<T> item, std::string_view key = {}) {
    Insert(Index(position), std::move(item), key);
  }
  /// Puts an item after the one at `position`, which must exist.
  void InsertAfter(std::int32_t position, std::shared_ptr<T> item, std::string_view key = {}) {
    Insert(Index(position) + 1, std::move(item), key);
  }

  /// The item at a position, or under a key; raises when there is none.
  const std::shared_ptr<T>& Item(std::int32_t position) const { return m_entries[Index(position)].item; }
  const std::shared_ptr<T>& Item(std::string_view key) const { return Known(key)->second; }
  /// The item under a key, or an empty reference.
  std::shared_ptr<T> Find(std::string_view key) const {
    const auto found = m_byKey.find(key);
    return found == m_byKey.end() ? nullptr : found->second;
  }
  /// The key of the item at a position; empty for an item without one.
  std::string KeyAt(std::int32_t position) const {
    const Entry& entry = m_entries[Index(position)];
    return entry.key ? *entry.key : std::string();
  }

  /// Takes the item at a position, or under a key, out; those behind it move up.
  void Remove(std::int32_t position) {
    const auto entry = m_entries.begin() + static_cast<std::ptrdiff_t>(Index(position));
    if (entry->key) m_byKey.erase(m_byKey.find(*entry->key));
    m_entries.erase(entry);
  }
  void Remove(std::string_view key) {
    const auto known = Known(key);
    auto entry = m_entries.begin();
    while (entry->key != &known->first)
      ++entry;
    m_entries.erase(entry);
    m_byKey.erase(known);
  }

  const_iterator begin() const { return const_iterator(m_entries.begin()); }
  const_iterator end() const { return const_iterator(m_entries.end()); }
  /// The items as they stand now, for a walk that changes the collection under way.
  std::vector<std::shared_ptr<T>> Items() const { return {begin(), end()}; }

 private:
  struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const { return std::hash<std::string_view>()(key); }
  };
  using ItemsByKey = std::unordered_map<std::string, std::shared_ptr<T>, KeyHash, std::equal_to<>>;

  std::size_t Index(std::int32_t position) const {
    if (position < 1 || position > Count()) {
      throw Error(ErrorNumber::BadPosition, "Position " + std::to_string(position) +
                                                " lies outside the collection, which holds " +
                                                std::to_string(Count()) + " items.");
    }
    return static_cast<std::size_t>(position) - 1;
  }

  auto Known(std::string_view key) const {
    const auto found = m_byKey.find(key);
    if (found == m_byKey.end()) {
      throw Error(ErrorNumber::UnknownKey,
                  "The collection holds no item with the key \"" + std::string(key) + "\".");
    }
    return found;
  }

  void Insert(std::size_t index, std::shared_ptr<T> item, std::string_view key) {
    if (!item) throw Error(ErrorNumber::ObjectNotSet, "An empty reference cannot be put into a collection.");
    if (m_entries.size() >= static_cast<std::size_t>(INT32_MAX)) {
      throw Error(ErrorNumber::Overflow, "The collection cannot hold more items.");
    }
    const auto entry =
        m_entries.insert(m_entries.begin() + static_cast<std::ptrdiff_t>(index), Entry{item, nullptr});
    if (key.empty()) return;
    try {
      const auto [known, isNew] = m_byKey.emplace(key, std::move(item));
      if (!isNew) {
        throw Error(ErrorNumber::DuplicateKey,
                    "The collection already holds an item with the key \"" + std::string(key) + "\".");
      }
      entry->key = &known->first;
    } catch (...) {
      m_entries.erase(entry);
      throw;
    }
  }

  Entries m_entries;
  ItemsByKey m_byKey;
};

}  // namespace HLIData
