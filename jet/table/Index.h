#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/Value.h"
#include "jet/file/Pager.h"
#include "jet/format/IndexPage.h"
#include "jet/format/TableDefinition.h"
#include "jet/table/RowId.h"

namespace jet {

/// Bytes of an index key, or of the beginning of one. Keys sort as their bytes do.
using KeyBytes = std::vector<std::byte>;

/// The smallest key that is greater than every key beginning with `prefix`; empty when there is none.
KeyBytes KeyAfter(KeyBytes prefix);

/// Makes a key the smallest that is greater than every key beginning with it; empty when there is none.
void StepKey(KeyBytes& key);

/// The entry of `row` under `key`: the key, then page and slot.
format::EntryBytes MakeEntry(KeyBytes key, RowId row);

/// Walks entries of an index in key order between two bounds. Ends, rather than going wrong, only if the
/// index is left as it is meanwhile. Raises DamagedFile.
class IndexCursor {
 public:
  /// To the next entry, at first the first one; false at the end.
  bool Next();
  /// Row of the current entry.
  RowId Row() const;
  /// The current entry, key and row.
  format::EntryBytes Entry() const { return m_view->Read(m_place); }

 private:
  friend class Index;
  IndexCursor(const class Index& index, std::span<const std::byte> lower, std::span<const std::byte> upper);
  void Enter(PageHandle leaf);

  const Index* m_index;
  std::span<const std::byte> m_lower;
  std::span<const std::byte> m_upper;
  PageHandle m_page;
  std::optional<format::IndexPageView> m_view;
  format::EntryPlace m_place;
  std::size_t m_pagesLeft;  // a damaged chain of leaves may be a ring
  bool m_started = false;
};

/// One real index of a table: a B-tree of keys, each with the row it belongs to.
///
/// Reading is here, changing the tree in IndexEditor. The root page stays the same for the life of the index.
class Index {
 public:
  Index(Pager& pager, const format::TableDefinition& table, std::size_t number, std::string where);

  const format::IndexDefinition& Definition() const { return m_table->indexes[m_number]; }
  /// For messages: "index 'season id' of 'draft info'".
  const std::string& Where() const { return m_where; }

  /// Key bytes of the leading columns' values; none when a value cannot be put as a key (another sort order,
  /// a value of another kind than the column's).
  std::optional<KeyBytes> KeyPrefix(std::span<const Value> leading) const;
  /// What the key of a row begins with when its first column is not Null.
  KeyBytes FirstNotNull() const;
  /// Entries from `lower` (included) to `upper` (excluded). An empty bound is none. The cursor borrows both.
  IndexCursor Range(std::span<const std::byte> lower, std::span<const std::byte> upper) const;
  /// Row of some entry whose key begins with `prefix`.
  std::optional<RowId> Find(const KeyBytes& prefix) const;
  /// Row of the entry with the greatest key below `upper` (empty: the greatest of all); none when there is
  /// none.
  std::optional<RowId> Last(const KeyBytes& upper = {}) const;

  /// Leaf where `key` is, or would be.
  PageHandle FindLeaf(std::span<const std::byte> key) const;
  /// The leaf with the greatest entries.
  PageHandle LastLeaf() const;

  /// Pages between the root and a leaf never exceed this; more means a ring.
  static constexpr std::size_t kMaxDepth = 32;

 private:
  friend class IndexCursor;
  format::IndexPageView View(const PageHandle& page) const;
  [[noreturn]] void RaiseDamaged(const std::string& what) const;

  Pager* m_pager;
  const format::TableDefinition* m_table;
  std::size_t m_number;
  std::string m_where;
};

}  // namespace jet
