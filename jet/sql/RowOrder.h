#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "jet/sql/Query.h"

namespace jet::sql {

/// Collects what rows are ordered by and tells the order that they should have. Rows equal in all of it keep
/// the order in which they were added.
class RowOrder {
 public:
  explicit RowOrder(const std::vector<SortColumn>& columns) : m_columns(&columns) {}

  /// The next row's values, one for each sort column.
  void AddKey(Value value) { m_keys.push_back(std::move(value)); }
  /// Numbers of the rows added, in the order wanted.
  std::vector<std::size_t> Sorted();

 private:
  void MakeTextKeys(std::size_t column);
  bool IsBefore(std::size_t a, std::size_t b) const;

  const std::vector<SortColumn>* m_columns;
  std::vector<Value> m_keys;
  std::vector<Bytes> m_textKeys;  // beside each of m_keys; empty for what is no text or has no key
};

}  // namespace jet::sql
