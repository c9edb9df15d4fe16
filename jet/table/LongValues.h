#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "jet/Value.h"
#include "jet/file/Pager.h"
#include "jet/format/LongValueReference.h"
#include "jet/format/TableDefinition.h"
#include "jet/table/PageAllocator.h"

namespace jet {

/// The long values (memo, OLE) of one column: short ones lie in the row, longer ones on pages of the column's
/// own, in one piece or as a chain of pieces.
class LongValues {
 public:
  LongValues(Pager& pager, PageAllocator& allocator, const format::TableDefinition& table,
             const format::ColumnDefinition& column);

  /// The value that a row's `stored` bytes stand for. Raises DamagedFile.
  Bytes Read(std::span<const std::byte> stored) const;
  /// Writes a value; the bytes for the row. Inside a change unit. Raises RecordTooLarge, FeatureNotSupported
  /// for a column that the file gives no pages.
  Bytes Write(std::span<const std::byte> value);
  /// Gives back what the value of a row takes outside it. Inside a change unit.
  void Free(std::span<const std::byte> stored);

 private:
  [[noreturn]] void RaiseDamaged(const char* what) const;

  Pager* m_pager;
  PageAllocator* m_allocator;
  const format::LongValueMaps* m_maps = nullptr;  ///< none: the file gives the column no pages
  const std::string* m_columnName;
};

}  // namespace jet
