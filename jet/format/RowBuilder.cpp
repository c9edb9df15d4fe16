#include "jet/format/RowBuilder.h"

#include <algorithm>
#include <string>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"
#include "jet/format/RowLayout.h"

namespace jet::format {
namespace {

constexpr std::size_t kUsualPool = 128;  // bytes of variable columns; most rows have fewer

/// Bytes of the fixed part that a definition's columns need.
std::size_t FixedSize(const TableDefinition& table) {
  std::size_t size = 0;
  for (const ColumnDefinition& column : table.columns) {
    if (column.IsFixed() && column.type != ColumnType::YesNo) {
      size = std::max(size, std::size_t{column.fixedOffset} + column.size);
    }
  }
  return size;
}

[[noreturn]] void RaiseDamaged() {
  throw Error(ErrorNumber::DamagedFile, "A row is damaged: its offsets contradict its size.");
}

}  // namespace

void RowBuilder::Begin() {
  m_fixed.assign(FixedSize(m_table), std::byte{0});
  m_mask.assign(row_layout::MaskSize(m_table.columnsEver), std::byte{0});
  m_variable.assign(m_table.variableColumnsEver, {});
  m_pool.clear();
  m_pool.reserve(kUsualPool);
}

void RowBuilder::Begin(std::span<const std::byte> oldRow) {
  Begin();
  using namespace row_layout;
  if (oldRow.size() < kFixedStart) RaiseDamaged();
  const std::byte* const bytes = oldRow.data();
  const std::size_t columns = LoadU16(bytes);
  const std::size_t maskSize = MaskSize(columns);
  if (columns > m_table.columnsEver || oldRow.size() < kFixedStart + maskSize) RaiseDamaged();
  const std::size_t mask = oldRow.size() - maskSize;
  KeepMask(oldRow.subspan(mask), columns);

  std::size_t fixedEnd = mask;
  if (m_table.variableColumnsEver != 0) {
    if (mask < kFixedStart + kVariableCountBack) RaiseDamaged();
    const std::size_t variables = LoadU16(bytes + mask - kVariableCountBack);
    const std::size_t tableSize = VariableTableSize(variables);
    if (mask < kFixedStart + tableSize) RaiseDamaged();
    if (variables > m_variable.size()) m_variable.resize(variables);
    fixedEnd = LoadU16(bytes + mask - StartOfVariableBack(0));
    std::size_t begin = fixedEnd;
    for (std::size_t i = 0; i < variables; ++i) {
      const std::size_t end = LoadU16(bytes + mask - StartOfVariableBack(i + 1));
      if (begin > end || end > mask - tableSize) RaiseDamaged();
      m_variable[i] = {m_pool.size(), end - begin};
      m_pool.insert(m_pool.end(), bytes + begin, bytes + end);
      begin = end;
    }
  }
  if (fixedEnd < kFixedStart || fixedEnd > mask) RaiseDamaged();
  const auto fixed = oldRow.subspan(kFixedStart, fixedEnd - kFixedStart);
  if (fixed.size() > m_fixed.size()) m_fixed.resize(fixed.size());
  std::copy(fixed.begin(), fixed.end(), m_fixed.begin());
}

void RowBuilder::KeepMask(std::span<const std::byte> oldMask, std::size_t oldColumns) {
  std::copy(oldMask.begin(), oldMask.end(), m_mask.begin());
  // Bits above the last column of the old row may be anything; those that now belong to later columns must be
  // clear.
  for (std::size_t number = oldColumns; number < m_table.columnsEver && number < 8 * oldMask.size();
       ++number) {
    SetPresent(number, false);
  }
}

void RowBuilder::SetPresent(std::size_t number, bool present) {
  const auto bit = static_cast<std::byte>(1U << (number & 7));
  std::byte& bits = m_mask.at(number >> 3);
  bits = present ? bits | bit : bits & ~bit;
}

void RowBuilder::Set(std::size_t columnIndex, std::span<const std::byte> stored) {
  const ColumnDefinition& column = m_table.columns.at(columnIndex);
  if (column.IsFixed()) {
    if (stored.size() != column.size || column.type == ColumnType::YesNo) {
      throw Error(ErrorNumber::CannotConvert, "A value of " + std::to_string(stored.size()) +
                                                  " bytes does not fit the column '" + column.name + "'.");
    }
    std::copy(stored.begin(), stored.end(), m_fixed.begin() + column.fixedOffset);
  } else {
    m_variable.at(column.variableIndex) = {m_pool.size(), stored.size()};
    m_pool.insert(m_pool.end(), stored.begin(), stored.end());
  }
  SetPresent(column.number, true);
}

void RowBuilder::SetYesNo(std::size_t columnIndex, bool value) {
  SetPresent(m_table.columns.at(columnIndex).number, value);
}

void RowBuilder::SetNull(std::size_t columnIndex) {
  const ColumnDefinition& column = m_table.columns.at(columnIndex);
  SetPresent(column.number, false);
  if (column.type == ColumnType::YesNo) return;
  if (column.IsFixed()) {
    std::fill_n(m_fixed.begin() + column.fixedOffset, column.size, std::byte{0});
  } else {
    m_variable.at(column.variableIndex) = {};
  }
}

const Bytes& RowBuilder::Build() {
  using namespace row_layout;
  std::size_t size = kFixedStart + m_fixed.size() + m_mask.size();
  for (const Piece& piece : m_variable)
    size += piece.size;
  if (!m_variable.empty()) size += VariableTableSize(m_variable.size());
  if (size > kMaxRowSize) {
    throw Error(ErrorNumber::RecordTooLarge, "The record is too large: it needs " + std::to_string(size) +
                                                 " bytes, and a page holds " + std::to_string(kMaxRowSize) +
                                                 ".");
  }
  m_row.assign(size, std::byte{0});
  Bytes& row = m_row;
  StoreU16(row.data(), m_table.columnsEver);
  std::copy(m_fixed.begin(), m_fixed.end(), row.begin() + kFixedStart);
  std::copy(m_mask.begin(), m_mask.end(), row.end() - static_cast<std::ptrdiff_t>(m_mask.size()));
  if (m_variable.empty()) return row;

  const std::size_t mask = size - m_mask.size();
  std::size_t at = kFixedStart + m_fixed.size();
  StoreU16(row.data() + mask - kVariableCountBack, static_cast<std::uint16_t>(m_variable.size()));
  for (std::size_t i = 0; i < m_variable.size(); ++i) {
    const Piece& piece = m_variable[i];
    StoreU16(row.data() + mask - StartOfVariableBack(i), static_cast<std::uint16_t>(at));
    std::copy_n(m_pool.begin() + static_cast<std::ptrdiff_t>(piece.start), piece.size,
                row.begin() + static_cast<std::ptrdiff_t>(at));
    at += piece.size;
  }
  StoreU16(row.data() + mask - StartOfVariableBack(m_variable.size()), static_cast<std::uint16_t>(at));
  return row;
}

}  // namespace jet::format
