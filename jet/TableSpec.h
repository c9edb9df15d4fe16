#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "jet/Value.h"

namespace jet {

/// A condition that values must keep to. One that gives Null holds.
struct ValidationRule {
  std::string expression;  ///< as ">0" of a column, "[from] < [to]" of a table
  std::string message;     ///< shown when it does not hold; empty: none
  friend bool operator==(const ValidationRule&, const ValidationRule&) = default;
};

/// A column of a table, as it is or as it should be made.
struct ColumnSpec {
  std::string name;
  ColumnType type = ColumnType::Long;
  std::uint16_t length = 0;      ///< text: most characters, 1..255; binary: most bytes, 1..510; else ignored
  bool autoNumber = false;       ///< long only: numbered by the engine when a row is added
  bool compressed = true;        ///< text and memo: stored with a byte a character where that is shorter
  bool required = false;         ///< Null is refused
  bool allowZeroLength = false;  ///< text and memo: an empty text is allowed
  std::optional<std::string> defaultValue =
      std::nullopt;  ///< the default's expression text, as "0", "\"QB\"", "Date()"
  std::optional<ValidationRule> validation = std::nullopt;  ///< the rule of the column alone
  std::uint8_t precision = 18;                              ///< decimal: digits in all, 1..28
  std::uint8_t scale = 0;                                   ///< decimal: digits after the point, 0..precision
};

struct IndexColumn {
  std::string name;
  bool ascending = true;
};

/// An index of a table, as it is or as it should be made.
struct IndexSpec {
  std::string name;
  std::vector<IndexColumn> columns;  ///< 1 to 10
  bool primary = false;              ///< the table's primary key: unique, no Nulls; at most one a table
  bool unique = false;               ///< no two rows with the same key; keys with a Null do not count
  bool required = false;             ///< no Nulls
  bool ignoreNulls = false;          ///< rows with Null in every column have no entry
  bool foreign = false;              ///< read only: made for a relationship
};

struct TableSpec {
  std::string name;
  std::vector<ColumnSpec> columns;                          ///< 1 to 255
  std::vector<IndexSpec> indexes;                           ///< up to 32
  std::optional<ValidationRule> validation = std::nullopt;  ///< the rule of whole rows
};

/// A table as it stands in the file.
struct TableInfo : TableSpec {
  bool isSystem = false;
  std::uint32_t rowCount = 0;
};

/// A relationship: columns of `table` (the foreign key) refer to columns of `parentTable`.
struct RelationInfo {
  std::string name;
  std::string table;
  std::vector<std::string> columns;
  std::string parentTable;
  std::vector<std::string> parentColumns;
  bool enforced = true;
  bool cascadeUpdates = false;
  bool cascadeDeletes = false;
};

/// What an object of the catalog is.
enum class ObjectKind {
  Table,
  SystemTable,
  LinkedTable,
  Query,
  Relationship,
  Form,
  Report,
  Macro,
  Module,
  Document,
  Container,
  Database,
  User,
  Unknown
};

/// "stored query", "linked table" and so on, for messages.
const char* NameOf(ObjectKind kind);

/// An object of the catalog, of any kind.
struct ObjectInfo {
  std::string name;
  ObjectKind kind = ObjectKind::Unknown;
  std::string
      definition;  ///< of a query the statement, if it can be put together; of a linked table its source
};

}  // namespace jet
