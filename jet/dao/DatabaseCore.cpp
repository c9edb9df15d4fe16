#include "jet/dao/DatabaseCore.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"
#include "jet/dao/RecordsetCore.h"
#include "jet/sql/ExpressionRules.h"

namespace jet {

DatabaseCore::DatabaseCore(std::string name, std::unique_ptr<Store> store, bool readOnly,
                           std::shared_ptr<CallObserver> observer)
    : m_name(std::move(name)),
      m_store(std::move(store)),
      m_readOnly(readOnly),
      m_observer(std::move(observer)) {
  sql::UseExpressionRules(*m_store);
}

DatabaseCore::~DatabaseCore() {
  try {
    Close();
  } catch (...) {
    // A destructor must not throw. Call Close() to see errors.
  }
}

Store& DatabaseCore::OpenStore() {
  if (m_store == nullptr) throw Error(ErrorNumber::ObjectClosed, "The database '" + m_name + "' is closed.");
  return *m_store;
}

Store& DatabaseCore::WritableStore() {
  Store& store = OpenStore();
  if (m_readOnly)
    throw Error(ErrorNumber::CannotUpdate, "The database '" + m_name + "' is open for reading only.");
  const std::string refusal = store.Pages().Storage().Refusal();
  if (!refusal.empty()) {
    throw Error(ErrorNumber::PermissionDenied, "The database '" + m_name +
                                                   "' can be read, and not changed: its log could not be "
                                                   "brought into it. " +
                                                   refusal);
  }
  return store;
}

void DatabaseCore::PrepareChange() {
  WritableStore();
  ReleaseRows();
}

Store& DatabaseCore::StoreForSchema() {
  Store& store = WritableStore();
  ReleaseRows();
  m_statements.Clear();
  if (!m_transactions.empty()) m_transactions.back().changesSchema = true;
  return store;
}

void DatabaseCore::Remove(RecordsetCore& recordset) {
  std::erase(m_recordsets, &recordset);
}

// Release pinned rows first; they would otherwise show a stale page.
void DatabaseCore::ReleaseRows() {
  for (RecordsetCore* recordset : m_recordsets)
    recordset->ReleaseRow();
}

void DatabaseCore::BeginTrans() {
  Observe("Database.BeginTrans");
  Store& store = OpenStore();
  ReleaseRows();
  m_transactions.emplace_back(store.Pages());
}

void DatabaseCore::CheckInTransaction() const {
  if (!m_transactions.empty()) return;
  throw Error(ErrorNumber::NoTransaction, "The database '" + m_name + "' has no transaction to end.");
}

void DatabaseCore::CommitTrans() {
  Observe("Database.CommitTrans");
  OpenStore();
  CheckInTransaction();
  ReleaseRows();
  try {
    m_transactions.back().unit.Commit();
  } catch (...) {
    try {
      Undo();
    } catch (...) {
      // Report the original error.
    }
    throw;
  }
  const bool changesSchema = m_transactions.back().changesSchema;
  m_transactions.pop_back();
  if (changesSchema && !m_transactions.empty()) m_transactions.back().changesSchema = true;
  for (RecordsetCore* recordset : m_recordsets)
    recordset->MoveToTransaction(m_transactions.size());
}

void DatabaseCore::Rollback() {
  Observe("Database.Rollback");
  OpenStore();
  CheckInTransaction();
  RollbackFrom(m_transactions.size());
}

void DatabaseCore::RollbackFrom(std::size_t depth) {
  ReleaseRows();
  while (!m_transactions.empty() && m_transactions.size() >= depth)
    Undo();
}

/// Undoes the innermost transaction, unless a commit that failed has undone its pages already.
void DatabaseCore::Undo() {
  const std::size_t depth = m_transactions.size();
  const bool changesSchema = m_transactions.back().changesSchema;
  m_transactions.pop_back();
  CloseRecordsetsOf(depth);
  if (changesSchema) ReloadSchema();
}

/// Closes the recordsets whose row ids rest on a transaction that was undone: they may name other rows now.
void DatabaseCore::CloseRecordsetsOf(std::size_t depth) {
  const std::vector<RecordsetCore*> recordsets = m_recordsets;
  for (RecordsetCore* recordset : recordsets) {
    if (recordset->Transaction() >= depth) recordset->Close();
  }
}

void DatabaseCore::ReloadSchema() {
  m_statements.Clear();
  try {
    m_store->Reload();
  } catch (...) {
    TakeStore();  // its tables may be those of the changes that were undone
    throw;
  }
}

void DatabaseCore::Close() {
  if (m_store != nullptr) TakeStore()->Close();
}

std::shared_ptr<File> DatabaseCore::Release() {
  OpenStore();
  return TakeStore()->Release();
}

void DatabaseCore::Detach() {
  if (m_store != nullptr) TakeStore()->Pages().Storage().Detach();
}

std::unique_ptr<Store> DatabaseCore::TakeStore() {
  const std::vector<RecordsetCore*> recordsets = std::exchange(m_recordsets, {});
  for (RecordsetCore* recordset : recordsets)
    recordset->Close();
  while (!m_transactions.empty())
    m_transactions.pop_back();
  return std::move(m_store);
}

}  // namespace jet
