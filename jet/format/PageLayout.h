#pragma once

#include <cstddef>
#include <cstdint>

/// What all pages and all rows have in common.
namespace jet::format {

inline constexpr std::size_t kPageSize = 4096;

// Every page but the header begins with its type and a byte that is always 1.
//
//   | type | 01 | ...
namespace page_type {
inline constexpr std::uint8_t kData = 1;
inline constexpr std::uint8_t kTableDefinition = 2;
inline constexpr std::uint8_t kIndexBranch = 3;
inline constexpr std::uint8_t kIndexLeaf = 4;
inline constexpr std::uint8_t kUsageMap = 5;
inline constexpr std::uint8_t kSecondByte = 1;
}  // namespace page_type

/// Bytes of the longest row: a page less the 14 bytes of a data page's head and the 2 of the row's slot.
inline constexpr std::size_t kMaxRowSize = 4080;

/// Bytes that a row's home slot needs so that it can become a pointer to the row's new place.
inline constexpr std::size_t kMinMovableRowSize = 4;

// The four system tables that every database has; the numbers are pages of their definitions.
namespace system_page {
inline constexpr std::uint32_t kHeader = 0;
inline constexpr std::uint32_t kGlobalUsageMap = 1;
inline constexpr std::uint32_t kObjects = 2;
inline constexpr std::uint32_t kAccessRights = 3;
inline constexpr std::uint32_t kQueries = 4;
inline constexpr std::uint32_t kRelationships = 5;
}  // namespace system_page

}  // namespace jet::format
