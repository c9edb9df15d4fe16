#pragma once

#include <compare>
#include <cstddef>
#include <string_view>
#include <vector>

/// The General Legacy sort order of text: case does not matter; accents, hyphens, apostrophes and control
/// characters decide only between otherwise equal texts; blanks at the end do not count.
namespace jet::format {

/// Appends the index key of a text, without the flag byte before it: what the first 255 UTF-16 units sort by.
/// False, with `key` as it was, when the text is not UTF-8. A surrogate without its partner, coded in three
/// bytes as if it were a character, is taken for what it is.
bool AppendTextKey(std::string_view utf8, std::vector<std::byte>& key);

/// Compares texts as their keys compare, but whole. Bytes that are no UTF-8 come last, by their value.
/// Allocates only when texts with accents or special characters are equal but for those.
std::strong_ordering CompareText(std::string_view a, std::string_view b);

}  // namespace jet::format
