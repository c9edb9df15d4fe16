#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Schema.h"
#include "jet/dao/Recordset.h"

namespace jet {

class DBEngine;
class DatabaseCore;
struct CheckReport;

/// An open database file: runs select statements and changes the schema.
///
/// Handed out by DBEngine; closes when the last reference goes or `Close` is called, and its recordsets with
/// it. Every member but `Close`, `Name` and `IsOpen` raises ObjectClosed after that.
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

  /// Schema changes; each applies whole or not at all. They raise ObjectExists, UnknownTable,
  /// InvalidDefinition, and the errors of rows that break a new unique index or relationship (DuplicateKey,
  /// NoReferredRow).
  void CreateTable(const TableSpec& table);
  void CreateIndex(std::string_view table, const IndexSpec& index);
  void CreateRelation(const RelationInfo& relation);
  /// Sets the password, up to 20 UTF-16 units; empty removes it.
  void SetPassword(const std::string& password);

  /// Several changes as one: everything between `BeginUpdates` and `CommitUpdates` is handed to the file
  /// together; `RollbackUpdates` undoes it. For bulk filling of new files. Not nested.
  void BeginUpdates();
  void CommitUpdates();
  void RollbackUpdates();

  /// Checks the whole file: structure, usage maps, indexes against rows, relationships. Reads every page.
  CheckReport Check() const;

 private:
  friend class DBEngine;

  std::shared_ptr<DatabaseCore> m_core;
};

}  // namespace jet
