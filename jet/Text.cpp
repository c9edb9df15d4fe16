#include "jet/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace jet {
namespace {

/// Characters from `first` to `last`, each `step` from the one before, that fold over the same distance.
struct Block {
  char32_t first;
  char32_t last;
  std::uint32_t step;
  std::int32_t distance;
};

#include "jet/CaseTable.inc"

constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

}  // namespace

char32_t FoldCase(char32_t character) {
  if (character < 0x80) return character >= U'A' && character <= U'Z' ? character + 32 : character;
  const auto* const block =
      std::lower_bound(kBlocks.begin(), kBlocks.end(), character,
                       [](const Block& candidate, char32_t wanted) { return candidate.last < wanted; });
  if (block == kBlocks.end() || character < block->first || (character - block->first) % block->step != 0)
    return character;
  return static_cast<char32_t>(static_cast<std::int32_t>(character) + block->distance);
}

char32_t NextCodePoint(std::string_view utf8, std::size_t& position) {
  const auto byteAt = [&](std::size_t at) { return static_cast<std::uint8_t>(utf8[at]); };
  const std::uint8_t first = byteAt(position);
  if (first < 0x80) {
    ++position;
    return first;
  }
  const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  const char32_t invalid = kInvalidByte + first;
  if (first < 0xC2 || first > 0xF4 || position + length > utf8.size()) {
    ++position;
    return invalid;
  }
  char32_t point = first & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    const std::uint8_t next = byteAt(position + i);
    if ((next & 0xC0) != 0x80) {
      ++position;
      return invalid;
    }
    point = point << 6 | (next & 0x3FU);
  }
  const bool overlong = (length == 3 && point < 0x800) || (length == 4 && point < 0x10000);
  if (overlong || IsSurrogate(point) || point >= kInvalidByte) {
    ++position;
    return invalid;
  }
  position += length;
  return point;
}

void AppendUtf8(char32_t point, std::string& into) {
  const auto put = [&into](char32_t byte) {
    into.push_back(static_cast<char>(static_cast<std::uint8_t>(byte)));
  };
  if (IsSurrogate(point) || point >= kInvalidByte) point = kReplacement;
  if (point < 0x80) {
    put(point);
  } else if (point < 0x800) {
    put(0xC0 | point >> 6);
    put(0x80 | (point & 0x3F));
  } else if (point < 0x10000) {
    put(0xE0 | point >> 12);
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  } else {
    put(0xF0 | point >> 18);
    put(0x80 | (point >> 12 & 0x3F));
    put(0x80 | (point >> 6 & 0x3F));
    put(0x80 | (point & 0x3F));
  }
}

bool IsUtf8(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    if (NextCodePoint(text, at) >= kInvalidByte) return false;
  }
  return true;
}

std::string FoldCase(std::string_view text) {
  std::string folded;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t begin = at;
    const char32_t point = NextCodePoint(text, at);
    if (point >= kInvalidByte) {
      folded += text.substr(begin, at - begin);
    } else {
      AppendUtf8(FoldCase(point), folded);
    }
  }
  return folded;
}

std::string_view Trim(std::string_view text, std::string_view blanks) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string LowerAscii(std::string text) {
  for (char& c : text)
    c = LowerAscii(c);
  return text;
}

bool SameWord(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

}  // namespace jet
