#include "jet/format/UsageMapRow.h"

#include <bit>

#include "jet/format/Bytes.h"

namespace jet::format {

std::uint32_t FindSetBit(std::span<const std::byte> bitmap, std::uint32_t from) {
  std::size_t byte = from / 8;
  if (byte >= bitmap.size()) return kNoPage;
  std::uint8_t bits = LoadU8(bitmap.data() + byte) & static_cast<std::uint8_t>(0xFF << (from % 8));
  while (bits == 0) {
    ++byte;
    while (byte + 8 <= bitmap.size() && LoadU64(bitmap.data() + byte) == 0)
      byte += 8;
    if (byte >= bitmap.size()) return kNoPage;
    bits = LoadU8(bitmap.data() + byte);
  }
  return static_cast<std::uint32_t>(8 * byte) + static_cast<std::uint32_t>(std::countr_zero(bits));
}

std::uint32_t LastSetBit(std::span<const std::byte> bitmap) {
  for (std::size_t byte = bitmap.size(); byte-- > 0;) {
    const std::uint8_t bits = LoadU8(bitmap.data() + byte);
    if (bits != 0)
      return static_cast<std::uint32_t>(8 * byte) + static_cast<std::uint32_t>(std::bit_width(bits)) - 1;
  }
  return kNoPage;
}

void AssignBit(std::span<std::byte> bitmap, std::uint32_t bit, bool value) {
  const auto mask = static_cast<std::byte>(1U << (bit % 8));
  if (value) {
    bitmap[bit / 8] |= mask;
  } else {
    bitmap[bit / 8] &= ~mask;
  }
}

}  // namespace jet::format
