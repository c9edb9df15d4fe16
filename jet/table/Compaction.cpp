#include "jet/table/Compaction.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/table/CatalogWriter.h"
#include "jet/table/Describe.h"
#include "jet/table/SchemaWriter.h"

namespace jet {

namespace system_page = format::system_page;

namespace {

constexpr std::uint32_t kRowsInUnit = 1000;

[[noreturn]] void RaiseWouldBeLost(const std::string& what) {
  throw Error(ErrorNumber::FeatureNotSupported, "A compacted file would lose " + what + ".");
}

/// A row of the catalog.
struct CatalogRow {
  RowId row;
  std::uint32_t id = 0;
  std::int32_t type = 0;
  std::uint32_t flags = 0;
  std::string name;
  Value properties;  ///< LvProp
};

class CatalogColumns {
 public:
  explicit CatalogColumns(Store& store) : m_objects(&store.TableAt(system_page::kObjects)) {
    constexpr std::array kNames = {"Id", "Type", "Flags", "Name", "LvProp"};
    for (std::size_t i = 0; i < kNames.size(); ++i) {
      const std::optional<std::size_t> column = m_objects->FindColumn(kNames[i]);
      if (!column) {
        throw Error(ErrorNumber::DamagedFile,
                    std::string("Table 'MSysObjects' is damaged: it has no column '") + kNames[i] + "'.");
      }
      m_columns[i] = *column;
    }
  }

  std::vector<CatalogRow> Rows() const {
    std::vector<CatalogRow> rows;
    std::string buffer;
    for (TableScan scan(*m_objects); scan.Next();) {
      CatalogRow row;
      row.row = scan.Id();
      row.id = static_cast<std::uint32_t>(Number(scan.Row(), 0));
      row.type = Number(scan.Row(), 1);
      row.flags = static_cast<std::uint32_t>(Number(scan.Row(), 2));
      if (const auto name = m_objects->ReadText(m_objects->View(scan.Row()), m_columns[3], buffer))
        row.name = *name;
      row.properties = m_objects->Read(scan.Row(), m_columns[4]);
      rows.push_back(std::move(row));
    }
    return rows;
  }

  void Write(const CatalogRow& to, const CatalogRow& from) {
    const std::array<ColumnValue, 2> values{
        {{m_columns[2], static_cast<std::int32_t>(from.flags)}, {m_columns[4], from.properties}}};
    m_objects->Update(to.row, values);
  }

 private:
  std::int32_t Number(const RowRef& row, std::size_t which) const {
    const Value value = m_objects->Read(row, m_columns[which]);
    const auto* const number = value.As<std::int32_t>();
    return number == nullptr ? 0 : *number;
  }

  Table* m_objects;
  std::array<std::size_t, 5> m_columns{};
};

bool IsCoreTable(const CatalogRow& row) {
  return row.id == system_page::kObjects || row.id == system_page::kAccessRights ||
         row.id == system_page::kQueries || row.id == system_page::kRelationships;
}

/// Everything in the catalog is a table, a relationship, or there in each database.
void RefuseOtherObjects(const std::vector<CatalogRow>& rows) {
  for (const CatalogRow& row : rows) {
    const bool isSystem = (row.flags & catalog::kSystemFlag) != 0;
    const bool isKnown =
        row.type == catalog::kTypeContainer || row.type == catalog::kTypeRelationship ||
        (row.type == catalog::kTypeDatabase && (row.id == catalog::kDatabase || row.properties.IsNull())) ||
        (row.type == catalog::kTypeTable && (!isSystem || IsCoreTable(row)));
    if (!isKnown) RaiseWouldBeLost("the object '" + row.name + "'");
  }
}

/// Whether nothing that people can tell sets the columns of two tables apart.
void RefuseOtherColumns(const Table& from, const Table& to) {
  for (const format::ColumnDefinition& column : from.Definition().columns) {
    const format::ColumnDefinition& copy = to.Definition().columns[*to.FindColumn(column.name)];
    if (column.type != copy.type || column.flags != copy.flags || column.size != copy.size ||
        column.precision != copy.precision || column.scale != copy.scale ||
        column.otherFlags != copy.otherFlags) {
      RaiseWouldBeLost("an attribute of column '" + column.name + "' of table '" + from.Name() + "'");
    }
  }
}

/// A table's columns alone: rules that its rows need not keep to, and indexes, come after the rows.
TableSpec WithoutRules(const TableInfo& table) {
  TableSpec spec{.name = table.name, .columns = table.columns, .indexes = {}};
  for (ColumnSpec& column : spec.columns) {
    column.required = false;
    column.allowZeroLength = true;
    column.defaultValue.reset();
    column.validation.reset();
  }
  return spec;
}

void CopyRows(const Table& from, Table& to, Pager& pager) {
  std::vector<std::size_t> columns;
  for (const format::ColumnDefinition& column : from.Definition().columns)
    columns.push_back(*to.FindColumn(column.name));
  std::vector<ColumnValue> row(columns.size());
  std::uint32_t count = 0;
  TableScan scan(from);
  for (bool isMore = scan.Next(); isMore;) {
    ChangeUnit unit(pager);
    for (std::uint32_t i = 0; i < kRowsInUnit && isMore; ++i, ++count, isMore = scan.Next()) {
      for (std::size_t c = 0; c < columns.size(); ++c)
        row[c] = {columns[c], from.Read(scan.Row(), c)};
      to.Insert(row);
    }
    unit.Commit();
  }
  if (count != from.RowCount()) {
    throw Error(ErrorNumber::DamagedFile, "The table '" + from.Name() + "' is damaged: it counts " +
                                              std::to_string(from.RowCount()) + " rows and has " +
                                              std::to_string(count) + ".");
  }
}

void CopyLastAutoNumber(Store& fromStore, const Table& from, Store& toStore, const Table& to) {
  const std::size_t at = format::definition_page::kLastAutoNumber;
  const std::uint32_t last = format::LoadU32(fromStore.Pages().Get(from.Definition().page).Data() + at);
  ChangeUnit unit(toStore.Pages());
  format::StoreU32(toStore.Pages().Change(to.Definition().page).Data() + at, last);
  unit.Commit();
}

void CopyTable(Store& fromStore, const Table& from, Store& to) {
  const TableInfo info = DescribeTable(from);
  SchemaWriter schema(to);
  schema.CreateTable(WithoutRules(info));
  Table& copy = *to.FindTable(info.name);
  RefuseOtherColumns(from, copy);
  CopyRows(from, copy, to.Pages());
  CopyLastAutoNumber(fromStore, from, to, copy);
  for (const IndexSpec& index : info.indexes) {
    if (!index.foreign) schema.CreateIndex(info.name, index);
  }
}

void CopyProperties(const std::vector<CatalogRow>& from, Store& to) {
  ChangeUnit unit(to.Pages());
  CatalogColumns columns(to);
  for (const CatalogRow& copy : columns.Rows()) {
    const auto original = std::ranges::find_if(
        from, [&](const CatalogRow& row) { return row.type == copy.type && row.name == copy.name; });
    if (original == from.end()) continue;
    if (copy.type == catalog::kTypeTable || copy.type == catalog::kTypeDatabase)
      columns.Write(copy, *original);
  }
  unit.Commit();
  to.Reload();
}

}  // namespace

void CopyContents(Store& from, Store& to) {
  const std::vector<CatalogRow> objects = CatalogColumns(from).Rows();
  RefuseOtherObjects(objects);
  for (const CatalogEntry& entry : from.Catalog()) {
    const Table& table = from.TableAt(entry.definition);
    if (!table.IsSystem()) CopyTable(from, table, to);
  }
  for (const RelationInfo& relation : DescribeRelations(from))
    SchemaWriter(to).CreateRelation(relation);
  CopyProperties(objects, to);
}

}  // namespace jet
