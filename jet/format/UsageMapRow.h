#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/format/PageLayout.h"

namespace jet::format {

// Usage map: a set of page numbers, as a row of a page whose owner is 0 (page 1 for the global maps).
//
//   inline        00 | u32 first page, a multiple of 8 | bitmap: bit b of byte i is page first + 8 * i + b
//   by reference  01 | u32 map page 0 | u32 map page 1 | ...     (0: no page of that range is in the set)
//
// Map page k (type 5): 05 01 00 00, then a bitmap of 4092 bytes of the pages from k * 32736 on.
namespace usage_map {
inline constexpr std::uint8_t kInline = 0;
inline constexpr std::uint8_t kByReference = 1;
inline constexpr std::size_t kFirstPage = 1;
inline constexpr std::size_t kBitmap = 5;
inline constexpr std::size_t kReferences = 1;
inline constexpr std::size_t kNewRowBytes = 69;  // 64 bytes of bitmap: 512 pages; or 17 references
inline constexpr std::size_t kMapPageBitmap = 4;
inline constexpr std::uint32_t kPagesPerMapPage = (kPageSize - kMapPageBitmap) * 8;
inline constexpr std::size_t kMostReferences = 17;  // a further one stands for pages beyond 2 GiB
inline constexpr std::size_t kGlobalGrowth = 32;    // bytes by which the global map's row grows
}  // namespace usage_map

/// No page: the answer of the searches when the set holds none.
inline constexpr std::uint32_t kNoPage = 0xFFFFFFFF;

/// First set bit at or after `from` of a bitmap; kNoPage when there is none.
std::uint32_t FindSetBit(std::span<const std::byte> bitmap, std::uint32_t from);
/// Last set bit of a bitmap; kNoPage when there is none.
std::uint32_t LastSetBit(std::span<const std::byte> bitmap);
inline bool TestBit(std::span<const std::byte> bitmap, std::uint32_t bit) {
  return (std::to_integer<unsigned>(bitmap[bit / 8]) >> (bit % 8) & 1U) != 0;
}
void AssignBit(std::span<std::byte> bitmap, std::uint32_t bit, bool value);

}  // namespace jet::format
