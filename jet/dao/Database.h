#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/TableSpec.h"
#include "jet/dao/Recordset.h"

namespace jet {

class DBEngine;
class DatabaseCore;
struct CheckReport;

/// An open database file: runs select statements and changes the schema.
///
/// Handed out by DBEngine; closes when the last reference goes or `Close` is called, and its recordsets with
/// it. Open transactions are rolled back then. Every member but `Close`, `Name`, `IsOpen`,
/// `HoldsFile` and `TransactionDepth` raises ObjectClosed after that.
class Database {
 public:
  explicit Database(std::shared_ptr<DatabaseCore> core);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// The name as it was given when the database was opened.
  const std::string& Name() const;
  bool IsOpen() const;
  bool IsReadOnly() const;
  /// Raises what every change would raise: CannotUpdate if it was opened for reading only, PermissionDenied
  /// if it could be opened for nothing else, ObjectClosed.
  void CheckCanChange() const;
  /// Whether it is open and the name leads to its file, not to another one that took its place.
  bool HoldsFile(const std::string& name) const;

  /// Runs a select statement. A plain select of one table gives a dynaset, which can be changed; joins,
  /// aggregates give a snapshot, which cannot. Raises SyntaxErrorInFrom, SyntaxErrorInExpression, NotASelect,
  /// UnknownTable, UnknownColumnInStatement, TypeMismatch, BadPattern.
  std::shared_ptr<Recordset> OpenRecordset(const std::string& sql);

  /// Closes the file and every recordset opened from it. Twice is harmless.
  void Close();

  /// Tables in name order, those of the system included (`TableInfo::isSystem`).
  std::vector<TableInfo> Tables() const;
  /// One table; its name in any case. Raises UnknownTable.
  TableInfo Table(std::string_view name) const;
  std::vector<RelationInfo> Relations() const;
  /// Everything that the catalog lists, in name order: tables, stored queries, forms and so on.
  std::vector<ObjectInfo> Objects() const;

  /// Schema changes; each applies whole or not at all. They raise ObjectExists, UnknownTable,
  /// InvalidDefinition, and the errors of rows that break a new unique index or relationship (DuplicateKey,
  /// NoReferredRow).
  void CreateTable(const TableSpec& table);
  void CreateIndex(std::string_view table, const IndexSpec& index);
  void CreateRelation(const RelationInfo& relation);
  /// Sets the password, up to 20 UTF-16 units; empty removes it.
  void SetPassword(const std::string& password);

  /// Starts a transaction: all changes until the matching `CommitTrans` reach the file together, or not at
  /// all. Transactions nest to any depth; an inner one becomes part of the outer one when it is committed. A
  /// statement that fails undoes its own changes only, and the transaction continues. jet::Transaction is the
  /// same as a scope.
  void BeginTrans();
  /// Commits the innermost transaction. The outermost reaches the disk in one write and one sync, or none if
  /// nothing changed. If that fails the transaction is rolled back, and the error is raised. Raises
  /// NoTransaction without a transaction, and what writing the file raises.
  void CommitTrans();
  /// Undoes the innermost transaction and closes the recordsets that were opened, added to or deleted from in
  /// it; other recordsets stay open. Raises NoTransaction; ReadFailed or DamagedFile if the schema changed in
  /// the transaction and cannot be read again, and the database is closed then.
  void Rollback();
  /// Transactions that are open, one inside the other; 0 also for a closed database.
  std::size_t TransactionDepth() const;

  /// Checks the whole file: structure, usage maps, indexes against rows, relationships. Reads every page.
  CheckReport Check() const;

 private:
  friend class DBEngine;
  friend class Transaction;

  std::shared_ptr<DatabaseCore> m_core;
};

}  // namespace jet
