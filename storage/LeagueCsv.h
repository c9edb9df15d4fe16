#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "storage/CsvReader.h"

namespace jet {
class Database;
}

namespace HLDataSrvc {

/// Fills master tables of a league file from CSV files.
///
/// The first line of a file names its columns: those of the table, in any order and any case. The key must be
/// among them; a column that is left out, and a field with nothing in it, stay Null (false for yes/no
/// columns). Identifiers are whole numbers from 1; yes/no is true, false, yes, no, 1 or 0.
namespace LeagueCsv {

/// Rows added to one table.
struct Filled {
  std::string file;  ///< the file's name, without folder
  std::string table;
  std::int32_t rows = 0;
};

/// Names of the files that FillFromFolder looks for, in the order in which they are read.
std::vector<std::string> FileNames();

/// Fills the tables whose files lie in `folder`: positions.csv, teams.csv, prize-types.csv, prizes.csv,
/// players.csv, managers.csv. Missing files are skipped.
///
/// A file is kept whole or not at all. Raises CsvError for the first line that cannot be taken, naming file,
/// line and reason; files read before it stay. Raises jet::Error when the database itself fails, or when the
/// folder does not exist (PathNotFound) or a file cannot be read (PermissionDenied).
std::vector<Filled> FillFromFolder(jet::Database& database, const std::string& folder);

}  // namespace LeagueCsv
}  // namespace HLDataSrvc
