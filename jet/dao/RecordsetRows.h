#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/Executor.h"
#include "jet/table/Store.h"
#include "jet/table/Table.h"

namespace jet {

/// The rows that a recordset holds, and the values of its fields in them.
class RecordsetRows {
 public:
  virtual ~RecordsetRows() = default;
  virtual std::size_t Count() const = 0;
  /// Whether the row was there when last looked at; rows that the recordset itself deleted are not.
  virtual bool Has(std::size_t) const { return true; }
  /// Raises RowDeleted.
  virtual Value Read(std::size_t row, std::size_t field) = 0;
  /// The text of a text or memo field, in `buffer` if it is nowhere else, until a row is read or changed;
  /// none for Null. Raises RowDeleted.
  virtual std::optional<std::string_view> ReadText(std::size_t row, std::size_t field,
                                                   std::string& buffer) = 0;
  /// Lets go of pages in the cache.
  virtual void Release() {}
};

/// Rows of values, read when the recordset was opened.
class SnapshotRows final : public RecordsetRows {
 public:
  explicit SnapshotRows(sql::ValueRows rows) : m_rows(std::move(rows)) {}
  std::size_t Count() const override { return m_rows.Count(); }
  Value Read(std::size_t row, std::size_t field) override { return m_rows.At(row, field); }
  std::optional<std::string_view> ReadText(std::size_t row, std::size_t field, std::string&) override {
    const auto* const text = m_rows.At(row, field).As<std::string>();
    if (text == nullptr) return std::nullopt;
    return *text;
  }

 private:
  sql::ValueRows m_rows;
};

/// Rows of one table, known by where they live; values are read when asked for.
class DynasetRows final : public RecordsetRows {
 public:
  /// `columns` are the fields; they must outlive it.
  DynasetRows(Store& store, jet::Table& table, sql::FoundRows rows,
              const std::vector<sql::OutputColumn>& columns);

  std::size_t Count() const override { return m_rows.size(); }
  bool Has(std::size_t row) const override { return m_rows[row].page != 0; }
  Value Read(std::size_t row, std::size_t field) override {
    return m_table->Read(Fetch(row), ColumnOf(field));
  }
  std::optional<std::string_view> ReadText(std::size_t row, std::size_t field, std::string& buffer) override {
    return m_table->ReadText(Fetch(row), ColumnOf(field), buffer);
  }
  void Release() override;

  /// The row, which stays in the cache until another is fetched. Raises RowDeleted.
  const format::RowView& Fetch(std::size_t row) {
    if (m_fetched && m_fetchedRow == row) return m_view;
    return FetchAnew(row);
  }

  jet::Table& Table() const { return *m_table; }
  /// The field's position in the table's definition.
  std::size_t ColumnOf(std::size_t field) const { return (*m_columns)[field].place.column; }
  /// Where a row lives. Raises RowDeleted when it does not any more.
  RowId IdOf(std::size_t row);
  /// Adds a row at the end.
  void Append(RowId id);
  /// Notes that a row was deleted through this recordset.
  void MarkDeleted(std::size_t row) { m_rows[row] = {}; }

 private:
  const format::RowView& FetchAnew(std::size_t row);

  Store* m_store;
  jet::Table* m_table;
  std::vector<RowId> m_rows;  // page 0: deleted through this recordset
  const std::vector<sql::OutputColumn>* m_columns;
  std::size_t m_foundAtOpening;
  std::uint64_t m_openedAt;                 // moments of the file
  std::vector<std::uint64_t> m_appendedAt;  // of the rows after those found at opening
  std::optional<RowRef> m_fetched;
  format::RowView m_view;  // of m_fetched
  std::size_t m_fetchedRow = 0;
};

}  // namespace jet
