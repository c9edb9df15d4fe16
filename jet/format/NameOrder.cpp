#include "jet/format/NameOrder.h"

#include "jet/Text.h"
#include "jet/format/TextCodec.h"

namespace jet::format {
std::string FoldName(std::string_view name) {
  std::string folded;
  folded.reserve(name.size());
  for (std::size_t at = 0; at < name.size();)
    AppendUtf8(FoldCase(NextCodePoint(name, at)), folded);
  return folded;
}

std::strong_ordering CompareNames(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    const auto order = FoldCase(NextCodePoint(a, i)) <=> FoldCase(NextCodePoint(b, j));
    if (order != 0) return order;
  }
  return (i < a.size()) <=> (j < b.size());
}

bool SameName(std::string_view a, std::string_view b) {
  return CompareNames(a, b) == 0;
}

}  // namespace jet::format
