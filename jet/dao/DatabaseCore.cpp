#include "jet/dao/DatabaseCore.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"
#include "jet/dao/RecordsetCore.h"

namespace jet {

DatabaseCore::DatabaseCore(std::string name, std::unique_ptr<Store> store, bool readOnly,
                           std::shared_ptr<CallObserver> observer)
    : m_name(std::move(name)),
      m_store(std::move(store)),
      m_readOnly(readOnly),
      m_observer(std::move(observer)) {}

DatabaseCore::~DatabaseCore() {
  try {
    Close();
  } catch (...) {
    // Who wants to know closes the database before the last reference goes.
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
  return store;
}

void DatabaseCore::Remove(RecordsetCore& recordset) {
  std::erase(m_recordsets, &recordset);
}

// A row that someone still looks at would keep its page as it was, or lose it under its eyes.
void DatabaseCore::ReleaseRows() {
  for (RecordsetCore* recordset : m_recordsets)
    recordset->ReleaseRow();
}

void DatabaseCore::BeginUpdates() {
  Store& store = WritableStore();
  if (m_updates) {
    throw Error(ErrorNumber::FeatureNotSupported,
                "The database '" + m_name + "' has updates in progress already; they cannot be nested.");
  }
  ReleaseRows();
  m_updates.emplace(store.Pages());
}

void DatabaseCore::CheckInUpdates() const {
  if (m_updates) return;
  throw Error(ErrorNumber::NoEditInProgress, "The database '" + m_name + "' has no updates in progress.");
}

void DatabaseCore::CommitUpdates() {
  OpenStore();
  CheckInUpdates();
  ReleaseRows();
  try {
    m_updates->Commit();
  } catch (...) {
    m_updates.reset();
    try {
      ReloadAfterUndo();
    } catch (...) {
      // The first error is the one to tell.
    }
    throw;
  }
  m_updates.reset();
}

void DatabaseCore::RollbackUpdates() {
  OpenStore();
  CheckInUpdates();
  ReleaseRows();
  m_updates.reset();
  ReloadAfterUndo();
}

void DatabaseCore::ReloadAfterUndo() {
  m_statements.Clear();
  try {
    m_store->Reload();
  } catch (...) {
    TakeStore();  // what it knows of its tables may be of the changes that were undone
    throw;
  }
  // Tables made in the undone updates are gone, and with them what was opened on them.
  const std::vector<RecordsetCore*> recordsets = m_recordsets;
  for (RecordsetCore* recordset : recordsets) {
    if (!recordset->HasItsTable(*m_store)) recordset->Close();
  }
}

void DatabaseCore::Close() {
  if (m_store != nullptr) TakeStore()->Close();
}

std::unique_ptr<File> DatabaseCore::Release() {
  OpenStore();
  return TakeStore()->Release();
}

std::unique_ptr<Store> DatabaseCore::TakeStore() {
  const std::vector<RecordsetCore*> recordsets = std::exchange(m_recordsets, {});
  for (RecordsetCore* recordset : recordsets)
    recordset->Close();
  m_updates.reset();
  return std::move(m_store);
}

}  // namespace jet
