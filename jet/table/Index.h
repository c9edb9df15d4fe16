#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "jet/Value.h"
#include "jet/file/Pager.h"
#include "jet/format/TableDefinition.h"
#include "jet/table/RowId.h"

namespace jet {

/// Bytes of an index key, or of the beginning of one. Keys sort as their bytes do.
using KeyBytes = std::vector<std::byte>;

/// The smallest key that is greater than every key beginning with `prefix`; empty when there is none.
KeyBytes KeyAfter(KeyBytes prefix);

/// Walks entries of an index in key order between two bounds.
class IndexCursor {
 public:
  /// To the next entry, at first the first one; false at the end.
  bool Next();
  /// Row of the current entry.
  RowId Row() const;
};

/// One real index of a table: a B-tree of keys, each with the row it belongs to.
class Index {
 public:
  const format::IndexDefinition& Definition() const;
  /// Key bytes of the leading columns' values; none when a value cannot be put as a key (a character outside the
  /// known sort order, a value of another kind than the column's).
  std::optional<KeyBytes> KeyPrefix(std::span<const Value> leading) const;
  /// What the key of a row begins with when its first column is not Null.
  KeyBytes FirstNotNull() const;
  /// Entries from `lower` (included) to `upper` (excluded). An empty bound is none.
  IndexCursor Range(KeyBytes lower, KeyBytes upper) const;
  /// Row of the entry with the greatest key below `upper` (empty: the greatest of all); none when there is none.
  std::optional<RowId> Last(const KeyBytes& upper = {}) const;
};

}  // namespace jet
