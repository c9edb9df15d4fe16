#include "jet/dao/Database.h"

#include <algorithm>
#include <utility>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/check/Checker.h"
#include "jet/dao/DatabaseCore.h"
#include "jet/dao/RecordsetCore.h"
#include "jet/format/NameOrder.h"
#include "jet/table/Describe.h"
#include "jet/table/SchemaWriter.h"

namespace jet {
namespace {

/// A recordset and its state in one piece.
struct RecordsetInOne {
  RecordsetInOne(std::shared_ptr<DatabaseCore> database, const std::string& sql)
      : core(std::move(database), sql), recordset(core) {}

  RecordsetCore core;
  Recordset recordset;
};

}  // namespace

Database::Database(std::shared_ptr<DatabaseCore> core) : m_core(std::move(core)) {}

Database::~Database() {
  try {
    m_core->Close();
  } catch (...) {
    // Who wants to know calls Close.
  }
}

const std::string& Database::Name() const {
  m_core->Observe("Database.Name");
  return m_core->Name();
}
bool Database::IsOpen() const {
  m_core->Observe("Database.IsOpen");
  return m_core->IsOpen();
}

void Database::CheckCanChange() const {
  m_core->CheckCanChange();
}

bool Database::HoldsFile(const std::string& name) const {
  return m_core->IsOpen() && m_core->OpenStore().Pages().Storage().IsNamed(name);
}

bool Database::IsReadOnly() const {
  m_core->Observe("Database.IsReadOnly");
  m_core->OpenStore();
  return m_core->IsReadOnly();
}

std::shared_ptr<Recordset> Database::OpenRecordset(const std::string& sql) {
  m_core->Observe("Database.OpenRecordset", sql);
  const auto opened = std::make_shared<RecordsetInOne>(m_core, sql);
  return {opened, &opened->recordset};
}

void Database::Close() {
  m_core->Observe("Database.Close");
  m_core->Close();
}

std::vector<TableInfo> Database::Tables() const {
  m_core->Observe("Database.Tables");
  Store& store = m_core->OpenStore();
  std::vector<std::string> names = store.TableNames();
  std::sort(names.begin(), names.end(),
            [](const std::string& a, const std::string& b) { return format::CompareNames(a, b) < 0; });
  std::vector<TableInfo> tables;
  for (const std::string& name : names) {
    if (const jet::Table* table = store.FindTable(name)) tables.push_back(DescribeTable(*table));
  }
  return tables;
}

TableInfo Database::Table(std::string_view name) const {
  m_core->Observe("Database.Table", name);
  const jet::Table* const table = m_core->OpenStore().FindTable(name);
  if (table == nullptr) {
    throw Error(ErrorNumber::UnknownTable, "The database '" + m_core->Name() + "' has no table '" +
                                               std::string(name) + "'." +
                                               DescribeNoTable(m_core->OpenStore(), name));
  }
  return DescribeTable(*table);
}

std::vector<RelationInfo> Database::Relations() const {
  m_core->Observe("Database.Relations");
  return DescribeRelations(m_core->OpenStore());
}

std::vector<ObjectInfo> Database::Objects() const {
  m_core->Observe("Database.Objects");
  return DescribeObjects(m_core->OpenStore());
}

void Database::CreateTable(const TableSpec& table) {
  m_core->Observe("Database.CreateTable", table.name);
  SchemaWriter(m_core->StoreForSchema()).CreateTable(table);
}
void Database::CreateIndex(std::string_view table, const IndexSpec& index) {
  m_core->Observe("Database.CreateIndex", index.name);
  SchemaWriter(m_core->StoreForSchema()).CreateIndex(table, index);
}
void Database::CreateRelation(const RelationInfo& relation) {
  m_core->Observe("Database.CreateRelation", relation.name);
  SchemaWriter(m_core->StoreForSchema()).CreateRelation(relation);
}
void Database::SetPassword(const std::string& password) {
  m_core->Observe("Database.SetPassword");
  SchemaWriter(m_core->StoreForSchema()).SetPassword(password);
}

void Database::BeginTrans() {
  m_core->BeginTrans();
}
void Database::CommitTrans() {
  m_core->CommitTrans();
}
void Database::Rollback() {
  m_core->Rollback();
}
std::size_t Database::TransactionDepth() const {
  return m_core->TransactionDepth();
}

CheckReport Database::Check() const {
  m_core->Observe("Database.Check");
  return CheckDatabase(m_core->OpenStore());
}

}  // namespace jet
