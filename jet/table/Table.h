#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "jet/Value.h"
#include "jet/file/Pager.h"
#include "jet/format/TableDefinition.h"
#include "jet/table/Index.h"
#include "jet/table/RowId.h"

namespace jet {

class Store;

/// A row's bytes, pinned in the page cache for as long as this lives.
class RowRef {
 public:
  RowRef() = default;
  RowRef(PageHandle page, std::span<const std::byte> bytes) : m_page(std::move(page)), m_bytes(bytes) {}
  std::span<const std::byte> Bytes() const { return m_bytes; }

 private:
  PageHandle m_page;
  std::span<const std::byte> m_bytes;
};

/// A column's rules that are kept beside the definition, in the table's properties.
struct ColumnRules {
  bool required = false;
  bool allowZeroLength = true;
  std::optional<std::string> defaultValue;  ///< the expression's text
};

/// A change of one column of a row: the column's position in the definition's list and the value, already of the
/// kind that the column holds.
struct ColumnValue {
  std::size_t column = 0;
  Value value;
};

/// One table of an open database: its rows and its indexes.
///
/// Owned by the Store. Reading needs nothing; Insert, Update and Delete run inside a change unit of the Store's Pager
/// and keep indexes, usage maps, counts and enforced relationships right; when they raise, the caller rolls the unit
/// back. All raise DamagedFile for bytes that contradict the format.
class Table {
 public:
  const std::string& Name() const;
  const format::TableDefinition& Definition() const;
  /// The rules of column `column` of the definition's list.
  const ColumnRules& Rules(std::size_t column) const;
  /// Position of a column in the definition's list; its name in any case.
  std::optional<std::size_t> FindColumn(std::string_view name) const;
  bool IsSystem() const;
  /// Live rows, as the definition counts them.
  std::uint32_t RowCount() const;

  /// The row at `id`, through the pointer of a moved row; none when there is no live row of this table there.
  std::optional<RowRef> Fetch(RowId id) const;
  /// A column's value in a row. Reads long values whole.
  Value Read(const RowRef& row, std::size_t column) const;
  /// A text or memo column's value into `text`, without building a Value; false for Null.
  bool ReadText(const RowRef& row, std::size_t column, std::string& text) const;

  /// Adds a row. Columns that are not named are Null; yes/no columns false; automatic numbers are given.
  /// Default values are the caller's business. Raises NullInPrimaryKey, NullInRequiredColumn, ZeroLengthText,
  /// DuplicateKey, NoReferredRow, RecordTooLarge, FileTooLarge, FeatureNotSupported (an index that cannot be kept).
  RowId Insert(std::span<const ColumnValue> values);
  /// Changes columns of a row; the others keep their very bytes. Raises as Insert does, RowDeleted, RowIsReferred.
  void Update(RowId id, std::span<const ColumnValue> values);
  /// Raises RowDeleted, RowIsReferred.
  void Delete(RowId id);

  /// Real indexes, in the order of the definition.
  std::size_t IndexCount() const;
  const Index& IndexAt(std::size_t number) const;
  /// Number of the real index that serves the primary key.
  std::optional<std::size_t> PrimaryIndex() const;
  /// The name people know a real index by: its plain or primary logical index, else its relationship's.
  std::string IndexName(std::size_t number) const;
};

/// Walks the live rows of a table in storage order: pages in ascending number, slots in ascending number.
/// Rows that the caller deletes or adds while walking may or may not be met.
class TableScan {
 public:
  explicit TableScan(const Table& table);
  /// To the next row; false at the end.
  bool Next();
  RowId Id() const;
  /// The current row.
  const RowRef& Row() const;
};

}  // namespace jet
