#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What is done with texts everywhere: UTF-8, upper and lower case, blanks.
namespace jet {

/// NextCodePoint returns a byte that is no UTF-8 as that byte on top of this.
inline constexpr char32_t kInvalidByte = 0x110000;

/// The code point that begins at `position` of a text; moves `position` behind it. A byte that is no part of
/// valid UTF-8 (also of an encoded surrogate or an overlong form) is returned as kInvalidByte + byte.
char32_t NextCodePoint(std::string_view utf8, std::size_t& position);

/// Appends a code point as UTF-8; one that is none (a surrogate, past U+10FFFF) as U+FFFD.
void AppendUtf8(char32_t codePoint, std::string& into);

/// Whether all of a text is valid UTF-8.
bool IsUtf8(std::string_view text);

/// The small letter of a capital of any script, and the usual form of a letter that has several (final
/// sigma); other characters stay. Accents stay too.
char32_t FoldCase(char32_t character);
/// A text with every character folded; bytes that are no UTF-8 stay.
std::string FoldCase(std::string_view text);

/// The text with the capitals A to Z small.
std::string LowerAscii(std::string text);
/// Whether the texts are the same but for the case of A to Z.
bool SameWord(std::string_view a, std::string_view b);

/// The text without blanks at both ends.
std::string_view Trim(std::string_view text, std::string_view blanks = " \t\r\n");

}  // namespace jet
