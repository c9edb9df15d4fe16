#include "league/Utf8.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace HLLeague {
namespace {

struct Character {
  char32_t code = 0;
  std::string_view bytes;
};

/// The first character of a text that is not empty.
Character FirstOf(std::string_view text) {
  const auto byte = [text](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
  const std::uint8_t lead = byte(0);
  const std::size_t length = lead < 0xC2 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 1;
  if (length == 1 || text.size() < length) return {lead, text.substr(0, 1)};
  constexpr std::array<std::uint8_t, 5> kLeadBits = {0, 0, 0x1F, 0x0F, 0x07};
  char32_t code = lead & kLeadBits[length];
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return {lead, text.substr(0, 1)};
    code = (code << 6U) | (byte(i) & 0x3FU);
  }
  return {code, text.substr(0, length)};
}

struct Range {
  char32_t first;
  char32_t last;
};

template <std::size_t count>
bool IsIn(const std::array<Range, count>& ranges, char32_t code) {
  return std::any_of(ranges.begin(), ranges.end(),
                     [code](const Range& range) { return code >= range.first && code <= range.last; });
}

/// Combining marks of the scripts that names are likely to be written in, joiners, and variation selectors.
constexpr std::array<Range, 12> kNoWidth = {{{0x300, 0x36F},
                                             {0x483, 0x489},
                                             {0x591, 0x5BD},
                                             {0x610, 0x61A},
                                             {0x64B, 0x65F},
                                             {0xE31, 0xE31},
                                             {0xE34, 0xE3A},
                                             {0x1AB0, 0x1AFF},
                                             {0x1DC0, 0x1DFF},
                                             {0x200B, 0x200F},
                                             {0x20D0, 0x20FF},
                                             {0xFE00, 0xFE0F}}};

/// Hangul, kana, CJK, fullwidth forms, pictures.
constexpr std::array<Range, 9> kDoubleWidth = {{{0x1100, 0x115F},
                                                {0x2E80, 0x303E},
                                                {0x3041, 0xA4CF},
                                                {0xAC00, 0xD7A3},
                                                {0xF900, 0xFAFF},
                                                {0xFE30, 0xFE6F},
                                                {0xFF00, 0xFF60},
                                                {0x1F300, 0x1FAFF},
                                                {0x20000, 0x3FFFD}}};

std::size_t WidthOf(char32_t code) {
  if (IsIn(kNoWidth, code)) return 0;
  return IsIn(kDoubleWidth, code) ? 2 : 1;
}

char32_t Lower(char32_t code) {
  const auto within = [code](char32_t first, char32_t last) { return code >= first && code <= last; };
  if (within('A', 'Z')) return code + 0x20;
  if (within(0xC0, 0xDE) && code != 0xD7) return code + 0x20;
  if (within(0x100, 0x12F) || within(0x132, 0x137) || within(0x14A, 0x177)) return code | 1U;
  if (within(0x139, 0x148) || within(0x179, 0x17E)) return code + (code & 1U);
  if (code == 0x178) return 0xFF;
  if (within(0x391, 0x3A9) || within(0x410, 0x42F)) return code + 0x20;
  if (within(0x400, 0x40F)) return code + 0x50;
  return code;
}

/// A character below U+0800.
void AppendShort(std::string& text, char32_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else {
    text += static_cast<char>(0xC0U | (code >> 6U));
    text += static_cast<char>(0x80U | (code & 0x3FU));
  }
}

/// Characters that a terminal obeys, or that turn the direction of what follows.
bool IsControl(const Character& character) {
  const auto isIn = [code = character.code](auto first, auto last) { return code >= first && code <= last; };
  return isIn(0x00u, 0x1Fu) || isIn(0x7Fu, 0x9Fu) || isIn(0x2028u, 0x202Eu) || isIn(0x2066u, 0x2069u);
}

}  // namespace

std::size_t DisplayWidth(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const Character character = FirstOf(text);
    width += WidthOf(character.code);
    text.remove_prefix(character.bytes.size());
  }
  return width;
}

std::string CutToWidth(std::string_view text, std::size_t width) {
  if (DisplayWidth(text) <= width) return std::string(text);
  if (width == 0) return {};
  std::string cut;
  std::size_t left = width - 1;  // the last column is the mark's
  for (;;) {
    const Character character = FirstOf(text);
    const std::size_t wants = WidthOf(character.code);
    if (wants > left) break;
    cut += character.bytes;
    left -= wants;
    text.remove_prefix(character.bytes.size());
  }
  cut += "…";
  return cut;
}

std::string PaddedToWidth(std::string_view text, std::size_t width) {
  std::string padded = CutToWidth(text, width);
  padded.append(width - DisplayWidth(padded), ' ');
  return padded;
}

std::vector<std::string> Wrapped(std::string_view text, std::size_t width) {
  std::vector<std::string> lines(1);
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string word = CutToWidth(text.substr(0, end), width);
    std::string& line = lines.back();
    if (line.empty()) {
      line = word;
    } else if (DisplayWidth(line) + 1 + DisplayWidth(word) <= width) {
      line += " " + word;
    } else {
      lines.push_back(word);
    }
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

std::string FirstLetter(std::string_view text) {
  std::string letter;
  while (!text.empty()) {
    const Character character = FirstOf(text);
    if (!letter.empty() && WidthOf(character.code) > 0) break;
    letter += character.bytes;
    text.remove_prefix(character.bytes.size());
  }
  return letter;
}

std::string LowerCase(std::string_view text) {
  std::string lower;
  while (!text.empty()) {
    const Character character = FirstOf(text);
    const char32_t small = Lower(character.code);
    if (small == character.code) {
      lower += character.bytes;
    } else {
      AppendShort(lower, small);
    }
    text.remove_prefix(character.bytes.size());
  }
  return lower;
}

std::optional<std::size_t> Utf16Length(std::string_view text) {
  std::size_t units = 0;
  while (!text.empty()) {
    const Character character = FirstOf(text);
    const std::size_t length = character.bytes.size();
    const char32_t code = character.code;
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    if ((length == 1 && code > 0x7F) || (length == 3 && (code < 0x800 || isSurrogate)) ||
        (length == 4 && (code < 0x10000 || code > 0x10FFFF)))
      return std::nullopt;
    units += length == 4 ? 2 : 1;
    text.remove_prefix(length);
  }
  return units;
}

namespace {

/// The text with control characters other than `kept` replaced.
std::string WithoutControls(std::string_view text, std::string_view kept) {
  std::string printable;
  while (!text.empty()) {
    const Character character = FirstOf(text);
    const bool isKept =
        character.bytes.size() == 1 && kept.find(character.bytes[0]) != std::string_view::npos;
    if (IsControl(character) && !isKept) {
      printable += "\xEF\xBF\xBD";
    } else {
      printable += character.bytes;
    }
    text.remove_prefix(character.bytes.size());
  }
  return printable;
}

}  // namespace

std::string Printable(std::string_view text) {
  return WithoutControls(text, {});
}

std::string PrintableLines(std::string_view text) {
  return WithoutControls(text, "\n\t");
}

}  // namespace HLLeague
