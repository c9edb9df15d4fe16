#include "jet/format/RowCodec.h"

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/RowLayout.h"

namespace jet::format {
namespace {

[[noreturn]] void RaiseDamaged(const ColumnDefinition& column) {
  throw Error(ErrorNumber::DamagedFile,
              "A row is damaged: its offsets leave no place for the column '" + column.name + "'.");
}

}  // namespace

RowField FieldOf(std::span<const std::byte> row, const ColumnDefinition& column,
                 bool tableHasVariableColumns) {
  using namespace row_layout;
  if (row.size() < kFixedStart) RaiseDamaged(column);
  const std::byte* const bytes = row.data();
  const std::size_t columns = LoadU16(bytes);
  const std::size_t maskSize = MaskSize(columns);
  if (row.size() < kFixedStart + maskSize) RaiseDamaged(column);
  const std::size_t mask = row.size() - maskSize;
  const std::size_t number = column.number;
  const bool present = number < columns && (LoadU8(bytes + mask + (number >> 3)) >> (number & 7) & 1) != 0;
  if (!present || column.type == ColumnType::YesNo) return {present, {}};

  if (!tableHasVariableColumns) {
    if (!column.IsFixed()) return {};
    const std::size_t begin = kFixedStart + column.fixedOffset;
    if (begin + column.size > mask) RaiseDamaged(column);
    return {true, row.subspan(begin, column.size)};
  }

  if (mask < kFixedStart + kVariableCountBack) RaiseDamaged(column);
  const std::size_t variables = LoadU16(bytes + mask - kVariableCountBack);
  const std::size_t tableSize = VariableTableSize(variables);
  if (mask < kFixedStart + tableSize) RaiseDamaged(column);
  const std::size_t tableStart = mask - tableSize;
  if (column.IsFixed()) {
    const std::size_t begin = kFixedStart + column.fixedOffset;
    const std::size_t fixedEnd = LoadU16(bytes + mask - StartOfVariableBack(0));
    if (fixedEnd > tableStart || begin + column.size > fixedEnd) RaiseDamaged(column);
    return {true, row.subspan(begin, column.size)};
  }
  const std::size_t index = column.variableIndex;
  if (index >= variables) return {};
  const std::size_t begin = LoadU16(bytes + mask - StartOfVariableBack(index));
  const std::size_t end = LoadU16(bytes + mask - StartOfVariableBack(index + 1));
  if (begin < kFixedStart || begin > end || end > tableStart) RaiseDamaged(column);
  return {true, row.subspan(begin, end - begin)};
}

}  // namespace jet::format
