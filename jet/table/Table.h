#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/TableSpec.h"
#include "jet/Value.h"
#include "jet/file/Pager.h"
#include "jet/format/RowBuilder.h"
#include "jet/format/RowCodec.h"
#include "jet/format/TableDefinition.h"
#include "jet/table/Index.h"
#include "jet/table/RowId.h"
#include "jet/table/RowRules.h"
#include "jet/table/RowStore.h"

namespace jet {

class Store;
struct CatalogEntry;

/// A column's rules that are kept beside the definition, in the table's properties.
struct ColumnRules {
  bool required = false;
  bool allowZeroLength = true;
  std::optional<std::string> defaultValue;   ///< the expression's text
  std::optional<ValidationRule> validation;  ///< the rule of the column alone
};

/// A change of one column of a row: the column's position in the definition's list and the value, already of
/// the kind that the column holds.
struct ColumnValue {
  std::size_t column = 0;
  Value value;
};

/// One table of an open database: its rows and its indexes.
///
/// Owned by the Store. Insert, Update and Delete keep indexes, usage maps, counts and enforced relationships
/// right, and each applies whole or not at all: as a separate change unit, or as a part of the one under
/// way. All raise DamagedFile for bytes that contradict the format.
class Table {
 public:
  /// Reads the definition of the table that `entry` of the catalog names.
  Table(Store& store, const CatalogEntry& entry);
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;

  const std::string& Name() const { return m_name; }
  const format::TableDefinition& Definition() const { return m_definition; }
  /// The rules of column `column` of the definition's list.
  const ColumnRules& Rules(std::size_t column) const { return ReadRules().columns[column]; }
  /// The rule of whole rows.
  const std::optional<ValidationRule>& RowRule() const { return ReadRules().row; }
  /// Position of a column in the definition's list; its name in any case.
  std::optional<std::size_t> FindColumn(std::string_view name) const;
  bool IsSystem() const { return m_isSystem; }
  /// Live rows, as the definition counts them.
  std::uint32_t RowCount() const;

  /// The row at `id`, through the pointer of a moved row; none when there is no live row of this table there.
  std::optional<RowRef> Fetch(RowId id) const { return m_rows->Fetch(id); }
  /// The places of columns in a row, for as long as the row is there and stays as it is.
  format::RowView View(const RowRef& row) const { return View(row.Bytes()); }
  format::RowView View(std::span<const std::byte> row) const {
    return {row, m_definition.variableColumnsEver != 0};
  }
  /// A column's value in a row. Reads long values whole.
  Value Read(const format::RowView& row, std::size_t column) const;
  Value Read(const RowRef& row, std::size_t column) const { return Read(View(row), column); }
  /// The same for an index key: a text keeps surrogates without their partners, see AppendTextKey.
  Value ReadForKey(const RowRef& row, std::size_t column) const;
  /// A text or memo column's value, without building a Value: where it is stored if it can be read there,
  /// else in `buffer`; none for Null.
  std::optional<std::string_view> ReadText(const format::RowView& row, std::size_t column,
                                           std::string& buffer) const;

  /// Adds a row. Columns that are not named are Null; yes/no columns false; automatic numbers are given.
  /// Default values are the caller's business. Raises NullInPrimaryKey, NullInRequiredColumn, ZeroLengthText,
  /// RuleViolated, DuplicateKey, NoReferredRow, RecordTooLarge, FileTooLarge, FeatureNotSupported (an index
  /// that cannot be kept).
  RowId Insert(std::vector<ColumnValue> values);
  /// Changes columns of a row; the others keep their very bytes. Raises as Insert does, RowDeleted,
  /// RowIsReferred.
  void Update(RowId id, std::span<const ColumnValue> values);
  /// Raises RowDeleted, RowIsReferred.
  void Delete(RowId id);

  /// Real indexes, in the order of the definition.
  std::size_t IndexCount() const { return m_indexes.size(); }
  const Index& IndexAt(std::size_t number) const { return m_indexes[number].index; }
  /// Positions in the definition's list of the columns of a real index, in the order of the index.
  const std::vector<std::size_t>& IndexColumns(std::size_t number) const { return m_indexes[number].columns; }
  /// Number of the real index that serves the primary key.
  std::optional<std::size_t> PrimaryIndex() const;
  /// The name people know a real index by: its plain or primary logical index, else its relationship's.
  std::string IndexName(std::size_t number) const;

  const RowStore& Rows() const { return *m_rows; }
  Store& Owner() const { return *m_store; }

  /// Reloads the definition and the rules after a change of the schema or the undoing of one.
  void Reload();

 private:
  struct TableIndex {
    Index index;
    std::vector<std::size_t> columns;
  };
  /// Values of a row by position in the definition's list; Null for columns that were not requested.
  using RowValues = std::vector<Value>;
  struct KeyOfRow {
    std::optional<KeyBytes> bytes;  ///< none: the key's form is not known
    bool anyNull = false;
    bool hasEntry = true;  ///< false: the index leaves the row out
  };
  /// A row that keeps the rules of its columns, on its way into the table.
  struct NewRow {
    RowValues values;
    std::vector<bool> given;                     ///< by column: whether it has a value, be it Null
    std::optional<std::int32_t> lastAutoNumber;  ///< what the table notes with the row, if it gives numbers
  };

  Bytes ReadLongValue(const format::ColumnDefinition& column, const format::RowField& field) const;
  struct TableRules {
    std::vector<ColumnRules> columns;
    std::optional<ValidationRule> row;
    bool hasExpressions = false;                  ///< whether there is any validation rule
    mutable std::unique_ptr<RowRules> evaluated;  ///< made when first asked for
  };
  const TableRules& ReadRules() const;
  void CheckExpressions(const IncomingRow& row) const;
  void CheckExpressions(const RowRef& old, std::span<const ColumnValue> changes) const;
  RowValues IndexedValues(const RowRef& row) const;
  KeyOfRow KeyFor(const TableIndex& index, const RowValues& values) const;
  void CheckRules(std::size_t column, const Value& value) const;
  void CheckKeyNulls(std::size_t index, const RowValues& values) const;
  void CheckUnique(std::size_t index, const KeyOfRow& key, const RowValues& values,
                   std::optional<RowId> self) const;
  void CheckParent(const format::LogicalIndexDefinition& relation, const RowValues& values) const;
  std::vector<RowId> RowsWithKey(std::size_t index, const std::vector<Value>& key) const;
  void CheckChildren(const format::LogicalIndexDefinition& relation, const RowValues& oldValues,
                     const RowValues* newValues, int depth);
  void UpdateRow(RowId id, std::span<const ColumnValue> values, int depth);
  void DeleteRow(RowId id, int depth);
  [[noreturn]] void RaiseDuplicate(std::size_t index, const RowValues& values) const;
  [[noreturn]] void RaiseNoKey(std::size_t index, const RowValues& values) const;
  NewRow MakeRow(std::vector<ColumnValue>&& changes) const;
  std::optional<std::int32_t> GiveAutomaticValues(NewRow& row) const;
  std::vector<KeyOfRow> KeysOf(const NewRow& row) const;
  const Bytes& BuildRow(const NewRow& row);
  std::optional<RowId> InsertInPlace(const NewRow& row);
  RowId InsertAnywhere(const NewRow& row);
  void AddEntry(std::size_t index, KeyOfRow&& key, RowId id);
  void CountKey(std::size_t index);
  void CountRow(const NewRow& row);
  void RaiseLastAutoNumber(std::span<const ColumnValue> changes);
  void RemoveEntry(std::size_t index, const KeyOfRow& key, RowId id);
  std::span<const std::byte> StoredValue(const format::ColumnDefinition& column, const Value& value,
                                         Bytes& buffer);
  std::string DescribeKey(std::size_t index, const RowValues& values) const;
  void AddToRowCount(std::int32_t difference);
  bool RefersToItself(const format::LogicalIndexDefinition& relation) const;
  const Table& Partner(const format::LogicalIndexDefinition& relation, std::size_t& realIndex) const;

  Store* m_store;
  std::string m_name;
  bool m_isSystem;
  RowId m_catalogRow;
  format::TableDefinition m_definition;
  std::vector<TableIndex> m_indexes;
  std::unique_ptr<RowStore> m_rows;
  format::RowBuilder m_builder{m_definition};
  Bytes m_stored;                             // a value on its way into m_builder
  mutable std::optional<TableRules> m_rules;  // read from the properties when first asked for
};

/// Walks the live rows of a table in storage order: pages in ascending number, slots in ascending number.
/// Rows that the caller deletes or adds while walking may or may not be met.
class TableScan {
 public:
  explicit TableScan(const Table& table) : m_table(&table) {}
  /// To the next row; false at the end.
  bool Next() {
    return NextUnless([](std::span<const std::byte>) { return false; });
  }
  /// The same, skipping rows for whose bytes `skip` returns true. Rows that have moved to another page are
  /// not skipped.
  template <typename Skip>
  bool NextUnless(const Skip& skip) {
    m_hasRow = false;
    do {
      if (!m_view) continue;
      const format::DataPageView view = *m_view;
      while (m_nextSlot < view.SlotCount()) {
        const format::RowSlot slot = view.Slot(m_nextSlot++);
        const bool isLive = slot.flags == format::data_page::kLive;
        if (isLive ? skip(view.Row(slot)) : slot.flags != format::data_page::kMoved) continue;
        m_slot = slot;
        return true;
      }
    } while (NextPage());
    return false;
  }
  RowId Id() const { return {m_page.Number(), static_cast<std::uint8_t>(m_nextSlot - 1)}; }
  /// The current row.
  const RowRef& Row();

 private:
  bool NextPage();

  const Table* m_table;
  PageHandle m_page;
  std::optional<format::DataPageView> m_view;  // of m_page
  format::RowSlot m_slot;                      // of the current row
  std::size_t m_nextSlot = 0;
  PageNumber m_nextPage = 0;
  RowRef m_row;
  bool m_hasRow = false;  // m_row is the current one
};

}  // namespace jet
