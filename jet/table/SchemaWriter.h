#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "jet/TableSpec.h"
#include "jet/table/Store.h"

namespace jet {

/// Changes the schema of an open database: tables, indexes, relationships, the password.
///
/// Borrows the Store. Each change is a separate unit, which applies whole or not at all; afterwards, also
/// when it failed, the Store knows the schema as it is in the file. What is wrong with a definition is found
/// before anything is written. Besides what is named below all raise DamagedFile, FileTooLarge and the errors
/// of the file.
class SchemaWriter {
 public:
  explicit SchemaWriter(Store& store) : m_store(&store) {}

  /// Raises ObjectExists, InvalidDefinition.
  void CreateTable(const TableSpec& table);

  /// Makes an empty table with the name and the columns of one of another file, attributes that are not
  /// understood included, but without rules and indexes; columns are not numbered automatically yet.
  Table& CreateTableLike(const Table& original);
  /// Has the columns of a copy get automatic values where those of the original do.
  void MarkAutomaticColumns(Table& copy, const Table& original);

  /// Adds an index to a table, which may have rows. Raises UnknownTable, ObjectExists, InvalidDefinition; for
  /// rows that the index cannot have DuplicateKey, NullInPrimaryKey, NullInRequiredColumn,
  /// FeatureNotSupported.
  void CreateIndex(std::string_view table, const IndexSpec& index);

  /// Adds a relationship between tables, which may have rows. An enforced one needs a unique index on just
  /// the columns that are referred to. Raises UnknownTable, ObjectExists, InvalidDefinition; NoReferredRow
  /// for rows that refer to none.
  void CreateRelation(const RelationInfo& relation);

  /// Sets the password of the file, up to 20 UTF-16 units; an empty one removes it. Raises InvalidDefinition.
  void SetPassword(std::string_view password);

 private:
  void AddTable(const std::string& name, format::TableDefinition definition, const Bytes& properties);
  void Apply(const std::function<void()>& change);
  Table& UserTable(std::string_view name);

  Store* m_store;
};

}  // namespace jet
