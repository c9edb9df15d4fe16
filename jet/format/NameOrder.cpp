#include "jet/format/NameOrder.h"

#include <cstdint>

#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

bool IsBetween(char32_t point, char32_t first, char32_t last) {
  return point >= first && point <= last;
}

}  // namespace

char32_t FoldCharacter(char32_t point) {
  if (point < 0x80) return IsBetween(point, 'A', 'Z') ? point + 0x20 : point;
  if (IsBetween(point, 0xC0, 0xDE)) return point == 0xD7 ? point : point + 0x20;
  if (IsBetween(point, 0x100, 0x137) || IsBetween(point, 0x14A, 0x177)) {
    return point == 0x130 || point == 0x131 ? point : point | 1;
  }
  if (IsBetween(point, 0x139, 0x148) || IsBetween(point, 0x179, 0x17E))
    return point % 2 == 1 ? point + 1 : point;
  if (point == 0x178) return 0xFF;
  if (IsBetween(point, 0x391, 0x3AB) && point != 0x3A2) return point + 0x20;
  if (IsBetween(point, 0x410, 0x42F)) return point + 0x20;
  if (IsBetween(point, 0x400, 0x40F)) return point + 0x50;
  return point;
}

std::string FoldName(std::string_view name) {
  std::string folded;
  folded.reserve(name.size());
  for (std::size_t at = 0; at < name.size();)
    AppendUtf8(FoldCharacter(NextCodePoint(name, at)), folded);
  return folded;
}

std::strong_ordering CompareNames(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const auto order = FoldCharacter(NextCodePoint(a, i)) <=> FoldCharacter(NextCodePoint(b, j));
    if (order != 0) return order;
  }
  return (i < a.size()) <=> (j < b.size());
}

bool SameName(std::string_view a, std::string_view b) {
  return CompareNames(a, b) == 0;
}

}  // namespace jet::format
