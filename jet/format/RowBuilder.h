#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "jet/format/TableDefinition.h"

namespace jet::format {

/// Puts a row together: a new one, or one made from an old row of which some columns change.
///
/// Borrows the definition, which must outlive it; copies the bytes it is given. Columns are named by their
/// position in the definition's list. A builder is reused for many rows without allocating again.
class RowBuilder {
 public:
  explicit RowBuilder(const TableDefinition& table) : m_table(table) { Begin(); }
  RowBuilder(const TableDefinition& table, std::span<const std::byte> oldRow) : m_table(table) {
    Begin(oldRow);
  }

  /// Begins a new row: every column Null, yes/no columns false.
  void Begin();
  /// Begins with an existing row. Columns that are not set keep their very bytes; so do the room of deleted
  /// columns and the bits of the null mask that belong to no column. Raises DamagedFile when the old row
  /// contradicts itself.
  void Begin(std::span<const std::byte> oldRow);

  /// Gives a column its stored bytes (an empty span is an empty text, not Null). Not for yes/no columns.
  /// Raises CannotConvert when a column of fixed size is given another number of bytes.
  void Set(std::size_t columnIndex, std::span<const std::byte> stored);
  void SetYesNo(std::size_t columnIndex, bool value);
  void SetNull(std::size_t columnIndex);

  /// The row's bytes, until the next call. Raises RecordTooLarge when they are more than a page holds
  /// (kMaxRowSize, 4080).
  const Bytes& Build();

 private:
  struct Piece {
    std::size_t start = 0;  ///< in m_pool
    std::size_t size = 0;
  };

  void SetPresent(std::size_t number, bool present);
  void KeepMask(std::span<const std::byte> oldMask, std::size_t oldColumns);

  const TableDefinition& m_table;
  Bytes m_fixed;  ///< the fixed part, from byte 2 of the row
  Bytes m_mask;
  std::vector<Piece> m_variable;  ///< by variable index
  Bytes m_pool;                   ///< bytes of the variable columns, in the order they were set
  Bytes m_row;
};

}  // namespace jet::format
