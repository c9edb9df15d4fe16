#include "jet/format/CaseFolding.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace jet::format {
namespace {

/// Characters from `first` to `last`, each `step` from the one before, that fold over the same distance.
struct Block {
  char32_t first;
  char32_t last;
  std::uint32_t step;
  std::int32_t distance;
};

#include "jet/format/CaseTable.inc"

}  // namespace

char32_t FoldCase(char32_t character) {
  if (character < 0x80) return character >= U'A' && character <= U'Z' ? character + 32 : character;
  const auto block =
      std::lower_bound(kBlocks.begin(), kBlocks.end(), character,
                       [](const Block& candidate, char32_t wanted) { return candidate.last < wanted; });
  if (block == kBlocks.end() || character < block->first || (character - block->first) % block->step != 0)
    return character;
  return static_cast<char32_t>(static_cast<std::int32_t>(character) + block->distance);
}

}  // namespace jet::format
