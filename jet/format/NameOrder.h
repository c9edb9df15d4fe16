#pragma once

#include <compare>
#include <string>
#include <string_view>

/// Names of tables, columns, indexes and relationships: the same in any case.
namespace jet::format {

/// A name in the form that names are compared in: Latin, Greek and Cyrillic capitals made small.
std::string FoldName(std::string_view name);

/// Order of two names by the code points of their folded forms, the order in which definitions list their
/// indexes.
std::strong_ordering CompareNames(std::string_view a, std::string_view b);

/// Whether two names are one. Fast for names of ASCII characters.
bool SameName(std::string_view a, std::string_view b);

}  // namespace jet::format
