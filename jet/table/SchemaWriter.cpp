#include "jet/table/SchemaWriter.h"

#include <utility>

#include "jet/Error.h"
#include "jet/format/PageLayout.h"
#include "jet/table/CatalogWriter.h"
#include "jet/table/DefinitionWriter.h"
#include "jet/table/IndexBuilder.h"
#include "jet/table/RelationWriter.h"
#include "jet/table/TableLayout.h"
#include "jet/table/TableProperties.h"

namespace jet {

namespace {

// Rights on a new table.
constexpr std::uint32_t kTableRights = 0xFFEFF;

}  // namespace

void SchemaWriter::Apply(const std::function<void()>& change) {
  try {
    ChangeUnit unit(m_store->Pages());
    change();
    unit.Commit();
  } catch (...) {
    try {
      m_store->Reload();
    } catch (const Error&) {
      // Report the original error.
    }
    throw;
  }
  m_store->Reload();
}

Table& SchemaWriter::UserTable(std::string_view name) {
  Table* const table = m_store->FindTable(name);
  if (table == nullptr) {
    throw Error(ErrorNumber::UnknownTable, "The database has no table '" + std::string(name) + "'.");
  }
  if (table->IsSystem()) {
    throw Error(ErrorNumber::InvalidDefinition,
                "The system table '" + table->Name() + "' cannot be changed.");
  }
  return *table;
}

void SchemaWriter::AddTable(const std::string& name, format::TableDefinition definition,
                            const Bytes& properties) {
  CatalogWriter writer(*m_store);
  Apply([&] {
    Pager& pager = m_store->Pages();
    PageAllocator& allocator = m_store->Allocator();
    definition.page = allocator.Allocate().Number();
    definition.pages = {definition.page};
    CompleteDefinition(pager, allocator, definition, NewMapPage(allocator));
    WriteDefinition(pager, allocator, definition, {});
    const Accounts accounts = writer.FindAccounts();
    writer.AddObject(
        {definition.page, catalog::kTables, name, catalog::kTypeTable, 0, accounts.admin, properties});
    writer.AddRight({definition.page, accounts.admin, kTableRights, false});
    writer.AddRight({definition.page, accounts.users, kTableRights, false});
  });
}

void SchemaWriter::CreateTable(const TableSpec& table) {
  format::TableDefinition definition = LayOutTable(table);
  if (CatalogWriter(*m_store).Has(catalog::kTables, table.name)) {
    throw Error(ErrorNumber::ObjectExists, "The database already has a table or query '" + table.name + "'.");
  }
  AddTable(table.name, std::move(definition), MakeTableProperties(table));
}

Table& SchemaWriter::CreateTableLike(const Table& original) {
  AddTable(original.Name(), LayOutLike(original.Definition(), original.Name()), {});
  return *m_store->FindTable(original.Name());
}

void SchemaWriter::MarkAutomaticColumns(Table& copy, const Table& original) {
  format::TableDefinition definition = copy.Definition();
  bool isChanged = false;
  for (const format::ColumnDefinition& column : original.Definition().columns) {
    format::ColumnDefinition& same = definition.columns[*copy.FindColumn(column.name)];
    isChanged = isChanged || same.flags != column.flags;
    same.flags = column.flags;
  }
  if (isChanged) Apply([&] { ChangeDefinition(copy, definition); });
}

void SchemaWriter::CreateIndex(std::string_view tableName, const IndexSpec& index) {
  Table& table = UserTable(tableName);
  format::TableDefinition definition = table.Definition();
  AddIndex(definition, table.Name(), index);
  CatalogWriter writer(*m_store);
  Apply([&] {
    ChangeDefinition(table, definition);
    BuildIndex(table, definition.indexes.size() - 1);
    writer.Touch(definition.page);
  });
}

void SchemaWriter::CreateRelation(const RelationInfo& relation) {
  RelationWriter writer(*m_store, UserTable(relation.table), UserTable(relation.parentTable), relation);
  Apply([&] { writer.Write(); });
}

void SchemaWriter::SetPassword(std::string_view password) {
  Apply([&] {
    const MutablePage header = m_store->Pages().Change(format::system_page::kHeader);
    format::StorePassword(header.Bytes(), password);
  });
}

}  // namespace jet
