#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/format/TableDefinition.h"

namespace jet::format {

/// A column's stored bytes in a row. For a yes/no column `present` is the value and there are no bytes; for
/// others it says whether there is a value or Null.
struct RowField {
  bool present = false;
  std::span<const std::byte> bytes;
};

/// The place of a column's value in the bytes of a row; checks every offset against the row.
/// `tableHasVariableColumns`: whether the definition's variableColumnsEver is not 0. Raises DamagedFile,
/// naming the column, when the row contradicts itself. Does not allocate.
RowField FieldOf(std::span<const std::byte> row, const ColumnDefinition& column,
                 bool tableHasVariableColumns);

}  // namespace jet::format
