#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "jet/sql/Query.h"

namespace jet::sql {

/// Collects what rows are ordered by and tells the order that they should have. Rows equal in all of it keep
/// the order in which they were added.
class RowOrder {
 public:
  explicit RowOrder(const std::vector<SortColumn>& columns);

  /// The next of the row's values, one for each sort column.
  void Add(Value value);
  /// Numbers of the rows added, in the order wanted.
  std::vector<std::size_t> Sorted();

 private:
  struct Key {
    std::uint64_t first = 0;  ///< its first bytes as a number, which decides mostly
    std::size_t begin = 0;    ///< in m_bytes
    std::size_t end = 0;
    std::size_t row = 0;
  };

  bool AppendKey(const Value& value);
  std::vector<std::size_t> SortedByKeys();
  std::vector<std::size_t> SortedByValues() const;

  const std::vector<SortColumn>* m_columns;
  std::vector<Value> m_values;      // of all rows, one behind the other
  std::vector<std::byte> m_bytes;   // keys that compare as the rows do, one behind the other
  std::vector<std::size_t> m_ends;  // of each row's key
  bool m_hasKeys;                   // every value so far has one
};

}  // namespace jet::sql
