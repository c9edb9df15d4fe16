#include "jet/table/Compaction.h"

#include <cstdint>
#include <string>
#include <vector>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/table/CatalogCopy.h"
#include "jet/table/Describe.h"
#include "jet/table/SchemaWriter.h"

namespace jet {

namespace system_page = format::system_page;

namespace {

constexpr std::uint32_t kRowsInUnit = 1000;

void CopyRows(const Table& from, Table& to, Pager& pager) {
  std::vector<std::size_t> columns;
  for (const format::ColumnDefinition& column : from.Definition().columns)
    columns.push_back(*to.FindColumn(column.name));
  // As for keys: so that text comes along whatever is in it.
  std::vector<ColumnValue> row(columns.size());
  std::uint32_t count = 0;
  TableScan scan(from);
  for (bool isMore = scan.Next(); isMore;) {
    ChangeUnit unit(pager);
    for (std::uint32_t i = 0; i < kRowsInUnit && isMore; ++i, ++count, isMore = scan.Next()) {
      for (std::size_t c = 0; c < columns.size(); ++c)
        row[c] = {columns[c], from.ReadForKey(scan.Row(), c)};
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

/// The new table has no indexes that relationships made.
Table& CopyTable(Store& fromStore, const Table& from, Store& to) {
  const TableInfo info = DescribeTable(from);
  SchemaWriter schema(to);
  Table& copy = schema.CreateTableLike(from);
  CopyRows(from, copy, to.Pages());
  schema.MarkAutomaticColumns(copy, from);
  CopyLastAutoNumber(fromStore, from, to, copy);
  for (const IndexSpec& index : info.indexes) {
    if (!index.foreign) schema.CreateIndex(info.name, index);
  }
  return copy;
}

}  // namespace

void CopyContents(Store& from, Store& to) {
  CatalogCopy catalog(from, to);
  for (const CatalogEntry& entry : from.Catalog()) {
    if (entry.definition <= system_page::kRelationships) continue;  // every database has these
    const Table& copy = CopyTable(from, from.TableAt(entry.definition), to);
    catalog.NoteTable(entry.definition, copy.Definition().page);
  }
  catalog.AddObjects();
  for (const RelationInfo& relation : DescribeRelations(from)) {
    if (relation.enforced) SchemaWriter(to).CreateRelation(relation);
  }
  catalog.CopyAttributes();
}

}  // namespace jet
