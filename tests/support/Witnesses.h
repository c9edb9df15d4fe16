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

/// Rows of a table as mdb-export (of mdbtools) prints them: fields separated by U+001F, rows ended by U+001E,
/// Null as
/// `\N`, dates as YYYY-MM-DD hh:mm:ss; binary values are left out. Without the header row.
std::string MdbExport(const std::string& path, std::string_view table);
bool HasMdbExport();

}  // namespace jet::test
