#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace jet {
class Database;
}

/// The league's tables as its rules see them: rows of numbers, read without keys, indexes or the service.
namespace HLDataSrvc::LeagueTables {

/// How the league uses a column.
enum class Use {
  ID,      ///< a whole number: part of a key, or refers to another table
  Number,  ///< any number type; read as a 32-bit integer
  YesNo,
  Text,
};

struct Column {
  const char* name;
  Use use;
};

/// A table. Its columns of numbers come first; the first `keyLength` of them identify a row.
struct Table {
  const char* name;
  std::size_t keyLength;
  std::vector<Column> columns;
};

/// All twelve tables.
const std::vector<Table>& All();
/// One of them.
const Table& Named(const std::string& name);

/// A number of a row; none for Null.
using Number = std::optional<std::int32_t>;
/// The numbers of a row in the order of the table's columns.
using Row = std::vector<Number>;

/// The rows of a table, ordered by their numbers, equal ones once.
struct Rows {
  std::vector<Row> rows;
  std::vector<Row> repeatedKeys;      ///< keys that several rows have, whether these are equal or not
  std::vector<std::string> tooLarge;  ///< sentences on numbers outside 32 bits, which are read as 0
};

/// Reads a table, which has all of its columns. Raises jet::Error.
Rows Read(jet::Database& database, const Table& table);

/// The where clause that holds for rows beginning with these numbers: "[season id] = 1 and [draft no] = 3".
std::string Where(const Table& table, const Row& numbers);
/// A row for messages, by its key: "[draft info], season id 1, draft no 3".
std::string KeyText(const Table& table, const Row& row);

/// How many rows with a key there are, and how many of them are repeats: equal to another in every column.
struct Repeats {
  std::size_t rows = 0;
  std::size_t repeats = 0;
};
Repeats CountRepeats(jet::Database& database, const Table& table, const Row& key);
/// Deletes the repeats.
void DeleteRepeats(jet::Database& database, const Table& table, const Row& key);

}  // namespace HLDataSrvc::LeagueTables
