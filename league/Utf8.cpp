#include "league/Utf8.h"

#include <algorithm>
#include <array>

#include "jet/Text.h"

namespace HLLeague {
namespace {

struct Character {
  char32_t code = 0;
  std::string_view bytes;
};

/// The first character of a text that is not empty; a byte that is no UTF-8 is one.
Character FirstOf(std::string_view text) {
  std::size_t length = 0;
  const char32_t code = jet::NextCodePoint(text, length);
  return {code, text.substr(0, length)};
}

struct Range {
  char32_t first;
  char32_t last;
};

#include "league/WidthTable.inc"

template <std::size_t count>
bool IsIn(const std::array<Range, count>& ranges, char32_t code) {
  const auto range =
      std::lower_bound(ranges.begin(), ranges.end(), code,
                       [](const Range& candidate, char32_t wanted) { return candidate.last < wanted; });
  return range != ranges.end() && code >= range->first;
}

std::size_t WidthOf(char32_t code) {
  if (IsIn(kNoWidth, code)) return 0;
  return IsIn(kDoubleWidth, code) ? 2 : 1;
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
  return jet::FoldCase(text);
}

std::optional<std::size_t> Utf16Length(std::string_view text) {
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t code = jet::NextCodePoint(text, at);
    if (code >= jet::kInvalidByte) return std::nullopt;
    units += code < 0x10000 ? 1 : 2;
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
