#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "jet/Error.h"
#include "jet/TableSpec.h"
#include "jet/Value.h"
#include "jet/dao/Database.h"

namespace jet::test {

/// Values of a row by position of the column.
using ModelRow = std::vector<Value>;

/// A table as it should be: its rows by the text of their primary key.
struct ModelTable {
  TableInfo info;
  std::vector<std::size_t> key;  ///< positions of the columns of the primary key
  std::map<std::string, ModelRow> rows;

  std::size_t Column(const std::string& name) const;
  std::vector<std::size_t> Columns(const std::vector<std::string>& names) const;
  std::string KeyOf(const ModelRow& row) const;
  /// Condition that finds the row in a select statement.
  std::string Where(const ModelRow& row) const;
  /// Whether values of the column must be distinguishable: it is part of a unique index or of a relationship.
  bool IsKey(std::size_t column) const { return keyColumns.contains(column); }

  std::set<std::size_t> keyColumns;
};

/// What a database should hold, and which changes it should refuse. Knows keys, rules of columns and
/// relationships, and nothing of files.
class Model {
 public:
  /// Takes over tables, relationships and rows of an open database.
  explicit Model(Database& database);

  std::vector<std::string> TableNames() const;
  ModelTable& Table(const std::string& name) { return m_tables.at(name); }
  const std::vector<RelationInfo>& Relations() const { return m_relations; }

  /// Errors any of which the engine may raise when `row` is stored, `old` being the row in whose place it
  /// comes if any. Empty: it must be stored.
  std::set<ErrorNumber> Refusals(const std::string& table, const ModelRow& row, const ModelRow* old) const;
  /// Whether the row must not be deleted because others refer to it.
  bool IsReferred(const std::string& table, const ModelRow& row) const;
  void Store(const std::string& table, const ModelRow& row, const ModelRow* old);
  void Delete(const std::string& table, const ModelRow& row);

  /// Differences between the database's rows, read through a recordset, and the model; empty: none.
  std::string Compare(Database& database) const;

 private:
  using Positions = std::vector<std::size_t>;

  static void ReadRows(Database& database, ModelTable& table);
  /// Rows of the table that refers which refer to `parent`.
  std::vector<ModelRow> Children(const RelationInfo& relation, const ModelRow& parent) const;
  bool HasParent(const RelationInfo& relation, const ModelRow& child) const;

  std::map<std::string, ModelTable> m_tables;
  std::vector<RelationInfo> m_relations;
};

/// A value as text, so that equal texts are equal values.
std::string ExactText(const Value& value);

}  // namespace jet::test
