#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace HLLeague {

// Text as people see it. Bytes that are no UTF-8 count as one character each.

/// How many columns of a terminal a text takes: none for marks that combine with the letter before them, two
/// for the wide characters of East Asian scripts and for pictures.
std::size_t DisplayWidth(std::string_view text);

/// As much of the text as fits `width` columns; "…" in the last column marks a cut.
std::string CutToWidth(std::string_view text, std::size_t width);

/// The text cut to `width` columns and filled up with blanks behind.
std::string PaddedToWidth(std::string_view text, std::size_t width);

/// The text on lines of at most `width` columns, broken at blanks; a word that is wider is cut.
std::vector<std::string> Wrapped(std::string_view text, std::size_t width);

/// The first character of a text with the marks that combine with it; empty for an empty text.
std::string FirstLetter(std::string_view text);

/// The text for comparing without regard to case, as the engine compares names.
std::string LowerCase(std::string_view text);

/// How many units of UTF-16 a text takes; none for a text that is no UTF-8.
std::optional<std::size_t> Utf16Length(std::string_view text);

/// The text with control characters, which would upset a terminal or a grid, replaced by U+FFFD.
std::string Printable(std::string_view text);

/// The same, with line feeds and tabs kept.
std::string PrintableLines(std::string_view text);

}  // namespace HLLeague
