#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "jet/sql/Query.h"

namespace jet::sql {

/// Collects what rows are ordered by and computes their order. Rows equal in all of it keep
/// the order in which they were added.
class RowOrder {
 public:
  enum class By {
    Keys,    ///< bytes that compare as the values do: quick, but not every value has them
    Values,  ///< any values
  };

  /// By keys, if values of such columns have them.
  explicit RowOrder(const std::vector<SortColumn>& columns);
  RowOrder(const std::vector<SortColumn>& columns, By by) : m_columns(&columns), m_by(by) {}

  /// The next of the row's values, one for each sort column.
  void Add(Value value);
  /// The same for a text column; none for Null.
  void AddText(std::optional<std::string_view> text);
  /// False when one of the values has no key: the rows are to be ordered by values instead.
  bool IsComplete() const { return m_isComplete; }
  /// Numbers of the rows added, in the order wanted. Only when it is complete.
  std::vector<std::size_t> Sorted() const;

 private:
  struct Key {
    std::uint64_t first = 0;  ///< its first bytes as a number, without those that all share; decides mostly
    std::size_t row = 0;
  };

  template <typename Append>
  void AddKey(const Append& append);
  std::span<const std::byte> KeyOf(std::size_t row) const {
    const std::size_t begin = row == 0 ? 0 : m_ends[row - 1];
    return {m_bytes.data() + begin, m_ends[row] - begin};
  }
  std::size_t SharedByAll() const;
  std::vector<std::size_t> SortedByKeys() const;
  std::vector<std::size_t> SortedByValues() const;

  const std::vector<SortColumn>* m_columns;
  By m_by;
  bool m_isComplete = true;
  std::size_t m_next = 0;           // sort column
  std::vector<Value> m_values;      // of all rows, one behind the other
  std::vector<std::byte> m_bytes;   // the keys of all rows, one behind the other
  std::vector<std::size_t> m_ends;  // of each row's key
};

}  // namespace jet::sql
