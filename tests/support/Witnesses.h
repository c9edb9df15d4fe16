#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Programs that share no code with the engine and say what they think of a file.
namespace jet::test {

/// Violations that the independent checker finds in a file, a line each; empty: none. `strict` also asks for
/// what careful writers avoid, `password` has the header's password compared.
std::string IndependentCheck(const std::string& path, bool strict = false, const std::string& password = {});
/// The same for a file in memory.
std::string IndependentCheck(const std::vector<std::byte>& bytes, bool strict = false,
                             const std::string& password = {});

/// Rows of a table as the independent checker decodes them: a JSON object a line, values by the names of the
/// columns.
std::string IndependentRows(const std::string& path, std::string_view table);

/// A table as mdb-export (of mdbtools) prints it, first the names of the columns, then the rows: Null as
/// `\N`, yes/no as 1 and 0; binary values are left out.
std::string MdbExport(const std::string& path, std::string_view table);
inline constexpr char kMdbExportFieldEnd = '\x1F';
inline constexpr char kMdbExportRowEnd = '\x1E';
bool HasMdbExport();

/// All tables as mdb-reader (of npm) sees them: {table: {columns: [name], rows: [[value]]}} as JSON.
std::string MdbReaderJson(const std::string& path, const std::string& password);
/// Whether tests/tools/node has been installed.
bool HasMdbReader();

}  // namespace jet::test
