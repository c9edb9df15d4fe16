#include "jet/format/CaseFolding.h"

namespace jet::format {
namespace {

struct Block {
  char32_t first;
  char32_t last;
  char32_t distance;  ///< from a capital to its small letter; 0: they alternate, capitals first
};

// Capitals and their small letters. Alternating blocks begin with a capital.
constexpr Block kBlocks[] = {
    {0x0041, 0x005A, 32}, {0x00C0, 0x00D6, 32}, {0x00D8, 0x00DE, 32}, {0x0100, 0x012F, 0},
    {0x0132, 0x0137, 0},  {0x0139, 0x0148, 0},  {0x014A, 0x0177, 0},  {0x0179, 0x017E, 0},
    {0x0386, 0x0386, 38}, {0x0388, 0x038A, 37}, {0x038C, 0x038C, 64}, {0x038E, 0x038F, 63},
    {0x0391, 0x03A1, 32}, {0x03A3, 0x03AB, 32}, {0x0400, 0x040F, 80}, {0x0410, 0x042F, 32},
    {0x0460, 0x0481, 0},  {0x048A, 0x04BF, 0},  {0x04C1, 0x04CE, 0},  {0x04D0, 0x052F, 0},
};
constexpr char32_t kCapitalYDiaeresis = 0x0178;
constexpr char32_t kSmallYDiaeresis = 0x00FF;
constexpr char32_t kFinalSigma = 0x03C2;
constexpr char32_t kSigma = 0x03C3;

}  // namespace

char32_t FoldCase(char32_t character) {
  if (character < 0x80) return character >= U'A' && character <= U'Z' ? character + 32 : character;
  if (character == kCapitalYDiaeresis) return kSmallYDiaeresis;
  if (character == kFinalSigma) return kSigma;
  for (const Block& block : kBlocks) {
    if (character < block.first) return character;
    if (character > block.last) continue;
    if (block.distance != 0) return character + block.distance;
    return (character - block.first) % 2 == 0 ? character + 1 : character;
  }
  return character;
}

}  // namespace jet::format
