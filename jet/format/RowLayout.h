#pragma once

#include <cstddef>
#include <cstdint>

// A row.
//
//   | columns, 2 | fixed columns, each at 2 + its offset | variable columns back to back | (slack)
//   | end of data, 2 | start of variable column n-1, 2 | ... | start of variable column 0, 2 | n, 2
//   | null mask, a bit a column
//
// Offsets count from the start of the row. A table without variable columns has rows without the third line's
// part (end of data up to n). The table of offsets is found from the end of the row; slack may precede it. A
// set bit in the mask says that the column has a value; for a yes/no column it is the value. Columns whose
// number is not below the count in front, and variable columns not below n, were added after the row was
// written and are Null.
namespace jet::format::row_layout {

inline constexpr std::size_t kFixedStart = 2;

inline constexpr std::size_t MaskSize(std::size_t columns) {
  return (columns + 7) / 8;
}

/// Places in the row counted back from the null mask's start.
inline constexpr std::size_t kVariableCountBack = 2;
inline constexpr std::size_t StartOfVariableBack(std::size_t variableIndex) {
  return 4 + 2 * variableIndex;
}
/// Size of the offset table with its count, for n variable columns.
inline constexpr std::size_t VariableTableSize(std::size_t n) {
  return 2 * (n + 1) + 2;
}

}  // namespace jet::format::row_layout
