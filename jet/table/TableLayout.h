#pragma once

#include <string>
#include <string_view>

#include "jet/TableSpec.h"
#include "jet/format/TableDefinition.h"

/// Turns what a caller wants made into definitions, without maps and pages yet. Everything is checked here,
/// before anything is written; raises InvalidDefinition or ObjectExists with a sentence that names table and
/// column.
namespace jet {

inline constexpr std::size_t kMaxNameLength = 64;  ///< UTF-16 units of a name
inline constexpr std::size_t kMaxIndexesOfTable = 32;

/// Raises InvalidDefinition unless `name` can be the name of a table, column, index or relationship (`what`).
void CheckName(const char* what, std::string_view name);

/// The definition of a new table with its columns and indexes.
format::TableDefinition LayOutTable(const TableSpec& table);

/// The definition of a table with the columns of another, in the order of their numbers but without places of
/// deleted ones, and without indexes. Attributes stay, but no column gets automatic values. Raises
/// InvalidDefinition when rows would not fit a page.
format::TableDefinition LayOutLike(const format::TableDefinition& original, const std::string& tableName);

/// Adds an index to a definition.
void AddIndex(format::TableDefinition& definition, const std::string& tableName, const IndexSpec& index);

/// A logical number that no index of the table has had.
std::uint32_t NextIndexNumber(const format::TableDefinition& definition);

/// Raises ObjectExists when an index of the table is called so, InvalidDefinition when it has as many as it
/// can.
void CheckNewIndexName(const format::TableDefinition& definition, const std::string& tableName,
                       const std::string& name);

/// Numbers columns in the order of the list and gives them their places in the row. Raises InvalidDefinition
/// when rows would not fit a page.
void PlaceColumns(format::TableDefinition& definition, const std::string& tableName);

}  // namespace jet
