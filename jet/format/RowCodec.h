#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/format/Bytes.h"
#include "jet/format/RowLayout.h"
#include "jet/format/TableDefinition.h"

namespace jet::format {

/// A column's stored bytes in a row. For a yes/no column `present` is the value and there are no bytes; for
/// others it says whether there is a value or Null.
struct RowField {
  bool present = false;
  std::span<const std::byte> bytes;
};

/// The places of columns in the bytes of a row; checks every offset against the row. Borrows the bytes.
/// Does not allocate.
class RowView {
 public:
  RowView() = default;
  /// `tableHasVariableColumns`: whether the definition's variableColumnsEver is not 0. A row that contradicts
  /// itself is refused when a column of it is asked for.
  RowView(std::span<const std::byte> row, bool tableHasVariableColumns);

  /// The place of a column's value. Raises DamagedFile, naming the column, when the row contradicts itself.
  RowField Field(const ColumnDefinition& column) const;

 private:
  enum class Shape : std::uint8_t {
    Broken,       ///< shorter than its null mask
    FixedOnly,    ///< of a table without variable columns
    NoOffsets,    ///< its table of offsets does not fit
    WithOffsets,  ///< the table of offsets lies within the row
  };

  [[noreturn]] static void RaiseDamaged(const ColumnDefinition& column);

  std::span<const std::byte> m_row;
  std::size_t m_columns = 0;  ///< that the null mask covers
  std::size_t m_mask = 0;     ///< where the null mask begins
  std::size_t m_variables = 0;
  std::size_t m_offsets = 0;   ///< where the table of offsets begins
  std::size_t m_fixedEnd = 0;  ///< where the variable columns begin
  Shape m_shape = Shape::Broken;
};

inline RowView::RowView(std::span<const std::byte> row, bool tableHasVariableColumns) : m_row(row) {
  using namespace row_layout;
  if (row.size() < kFixedStart) return;
  m_columns = LoadU16(row.data());
  const std::size_t maskSize = MaskSize(m_columns);
  if (row.size() < kFixedStart + maskSize) return;
  m_mask = row.size() - maskSize;
  if (!tableHasVariableColumns) {
    m_shape = Shape::FixedOnly;
    return;
  }
  m_shape = Shape::NoOffsets;
  if (m_mask < kFixedStart + kVariableCountBack) return;
  m_variables = LoadU16(row.data() + m_mask - kVariableCountBack);
  const std::size_t tableSize = VariableTableSize(m_variables);
  if (m_mask < kFixedStart + tableSize) return;
  m_offsets = m_mask - tableSize;
  m_fixedEnd = LoadU16(row.data() + m_mask - StartOfVariableBack(0));
  if (m_fixedEnd > m_offsets) m_fixedEnd = 0;  // leaves no place for any
  m_shape = Shape::WithOffsets;
}

inline RowField RowView::Field(const ColumnDefinition& column) const {
  using namespace row_layout;
  if (m_shape == Shape::Broken) RaiseDamaged(column);
  const std::byte* const bytes = m_row.data();
  const std::size_t number = column.number;
  const bool present =
      number < m_columns && (LoadU8(bytes + m_mask + (number >> 3)) >> (number & 7) & 1) != 0;
  if (!present || column.type == ColumnType::YesNo) return {present, {}};

  if (m_shape == Shape::FixedOnly) {
    if (!column.IsFixed()) return {};
    const std::size_t begin = kFixedStart + column.fixedOffset;
    if (begin + column.size > m_mask) RaiseDamaged(column);
    return {true, m_row.subspan(begin, column.size)};
  }

  if (m_shape == Shape::NoOffsets) RaiseDamaged(column);
  if (column.IsFixed()) {
    const std::size_t begin = kFixedStart + column.fixedOffset;
    if (begin + column.size > m_fixedEnd) RaiseDamaged(column);
    return {true, m_row.subspan(begin, column.size)};
  }
  const std::size_t index = column.variableIndex;
  if (index >= m_variables) return {};
  const std::size_t begin = LoadU16(bytes + m_mask - StartOfVariableBack(index));
  const std::size_t end = LoadU16(bytes + m_mask - StartOfVariableBack(index + 1));
  if (begin < kFixedStart || begin > end || end > m_offsets) RaiseDamaged(column);
  return {true, m_row.subspan(begin, end - begin)};
}

/// The place of one column's value, as RowView has it.
inline RowField FieldOf(std::span<const std::byte> row, const ColumnDefinition& column,
                        bool tableHasVariableColumns) {
  return RowView(row, tableHasVariableColumns).Field(column);
}

}  // namespace jet::format
