#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "jet/dao/DBEngine.h"
#include "jet/sql/StatementCache.h"
#include "jet/table/Store.h"

namespace jet {

class RecordsetCore;

/// What a Database and its recordsets share: the open file, until it is closed, and who must release it.
///
/// Owned by the Database and kept by its recordsets, so that these notice that it was closed.
class DatabaseCore {
 public:
  DatabaseCore(std::string name, std::unique_ptr<Store> store, bool readOnly,
               std::shared_ptr<CallObserver> observer);
  ~DatabaseCore();
  DatabaseCore(const DatabaseCore&) = delete;
  DatabaseCore& operator=(const DatabaseCore&) = delete;

  const std::string& Name() const { return m_name; }
  bool IsOpen() const { return m_store != nullptr; }
  bool IsReadOnly() const { return m_readOnly; }
  /// Raises ObjectClosed.
  Store& OpenStore();
  sql::StatementCache& Statements() { return m_statements; }

  bool IsObserved() const { return m_observer != nullptr; }
  /// Tells the observer of a call.
  void Observe(const char* call) const {
    if (m_observer != nullptr) m_observer->OnCall(call, {});
  }
  template <typename Text>
  void Observe(const char* call, const Text& detail) const {
    if (m_observer != nullptr) m_observer->OnCall(call, std::string(detail));
  }

  /// Recordsets that read from the file.
  void Add(RecordsetCore& recordset) { m_recordsets.push_back(&recordset); }
  void Remove(RecordsetCore& recordset);

  /// See Database.
  void CheckCanChange() { WritableStore(); }
  /// Prepares a change of rows, which is a separate unit. Raises ObjectClosed, CannotUpdate,
  /// PermissionDenied if the file could be opened for reading only.
  void PrepareChange();
  /// The store, ready for a change of the schema, which is a separate unit.
  Store& StoreForSchema();

  /// See Database.
  void BeginTrans();
  void CommitTrans();
  void Rollback();
  std::size_t TransactionDepth() const { return m_transactions.size(); }
  /// Rolls back the transactions that are open at `depth` and deeper. For destructors: no observer sees it.
  void RollbackFrom(std::size_t depth);

  /// Rolls back open transactions and closes the recordsets and the file. Twice is harmless.
  void Close();
  /// The same, and hands out the file, which is locked still. Raises ObjectClosed.
  std::shared_ptr<File> Release();
  /// The same without the file, which another store has taken over.
  void Detach();

 private:
  /// Rolls back its changes when destroyed before its unit was committed.
  struct OpenTransaction {
    explicit OpenTransaction(Pager& pager) : unit(pager) {}
    ChangeUnit unit;
    bool changesSchema = false;
  };

  Store& WritableStore();
  std::unique_ptr<Store> TakeStore();
  void ReleaseRows();
  void CheckInTransaction() const;
  void Undo();
  void CloseRecordsetsOf(std::size_t depth);
  void ReloadSchema();

  std::string m_name;
  std::unique_ptr<Store> m_store;  // none once closed
  bool m_readOnly;
  std::shared_ptr<CallObserver> m_observer;
  sql::StatementCache m_statements;
  std::vector<RecordsetCore*> m_recordsets;
  std::deque<OpenTransaction> m_transactions;  // outermost first; destroyed before the store
};

}  // namespace jet
