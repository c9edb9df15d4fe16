#pragma once

#include <cstddef>
#include <cstdint>

// A table definition: the first page from its start, then the bytes from offset 8 of each further page.
//
//   Every page:  | 02 01 | free bytes at its end, 2 | next definition page, 4 (0: the last) |
//   First page:  0x08 length of all that follows the first 8 bytes, 4 | 0x0c constant, 4 | 0x10 rows, 4
//                0x14 last automatic number, 4 | 0x18 its step, 4 | 0x28 kind, 1 | 0x29 columns ever, 2
//                0x2b variable columns ever, 2 | 0x2d columns, 2 | 0x2f logical indexes, 4 | 0x33 real
//                indexes, 4 0x37 row pointer of the owned-pages map, 4 | 0x3b row pointer of the free-space
//                map, 4 0x3f counts of each real index, 12 | columns, 25 each | column names | real indexes,
//                52 each logical indexes, 28 each | their names | maps of long-value columns, 10 each | ff ff
//                and 8 zeros
namespace jet::format::definition_page {

inline constexpr std::size_t kFreeBytes = 0x02;
inline constexpr std::size_t kNextPage = 0x04;
inline constexpr std::size_t kHeadSize = 8;  ///< what every page begins with

inline constexpr std::size_t kLength = 0x08;
inline constexpr std::size_t kMarker = 0x0C;
inline constexpr std::size_t kRowCount = 0x10;
inline constexpr std::size_t kLastAutoNumber = 0x14;
inline constexpr std::size_t kAutoNumberStep = 0x18;
inline constexpr std::size_t kKind = 0x28;
inline constexpr std::size_t kColumnsEver = 0x29;
inline constexpr std::size_t kVariableColumnsEver = 0x2B;
inline constexpr std::size_t kColumnCount = 0x2D;
inline constexpr std::size_t kLogicalIndexCount = 0x2F;
inline constexpr std::size_t kRealIndexCount = 0x33;
inline constexpr std::size_t kOwnedPages = 0x37;
inline constexpr std::size_t kFreePages = 0x3B;
inline constexpr std::size_t kIndexCounts = 0x3F;

inline constexpr std::uint32_t kMarkerValue = 0x0659;
inline constexpr std::uint32_t kIndexMarkerValue = 0x0783;
inline constexpr std::uint8_t kUserTable = 0x4E;
inline constexpr std::uint8_t kSystemTable = 0x53;

// Counts of a real index:  | entries when it was built over rows, 4 | distinct keys, 4 | 0, 4 |
inline constexpr std::size_t kIndexCountsSize = 12;
inline constexpr std::size_t kDistinctKeys = 4;

/// Place in the definition's stream (always on its first page) of the number of distinct keys of a real
/// index.
inline constexpr std::size_t DistinctKeysAt(std::size_t index) {
  return kIndexCounts + kIndexCountsSize * index + kDistinctKeys;
}

// Column:  | type, 1 | constant, 4 | number, 2 | variable index, 2 | ordinal, 2
//          | sort order: LCID, 2, variant, 1, version, 1; decimal: precision, 1, scale, 1, 0, 2
//          | flags, 1 | bit 0: compressed, 1 | 0, 4 | fixed offset, 2 | size, 2 |
inline constexpr std::size_t kColumnSize = 25;
inline constexpr std::uint8_t kCompressed = 0x01;

// Real index:  | constant, 4 | ten times: column number, 2 (ffff none), 1 ascending or 0 descending, 1
//              | row pointer of its usage map, 4 | root page, 4 | 0, 4 | flags, 1 | 0, 5 |
inline constexpr std::size_t kRealIndexSize = 52;
inline constexpr std::size_t kIndexRoot = 38;  ///< within a real index
inline constexpr std::size_t kMaxIndexColumns = 10;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;

// Logical index:  | constant, 4 | number, 4 | real index, 4 | side, 1 | partner's number, 4 | other table's
// page, 4
//                 | cascade updates, 1 | cascade deletes, 1 | kind, 1 | 0, 4 |
inline constexpr std::size_t kLogicalIndexSize = 28;

// Maps of a long-value column:  | column number, 2 (ffff: end of the list) | owned pages, 4 | free pages, 4 |
inline constexpr std::size_t kLongValueMapsSize = 10;
inline constexpr std::size_t kEndSize = 10;

// Limits of a definition.
inline constexpr std::size_t kMaxColumns = 255;
inline constexpr std::size_t kMaxColumnsEver = 1024;
inline constexpr std::size_t kMaxIndexes = 255;

}  // namespace jet::format::definition_page

/// Flags of a column.
namespace jet::format::column_flag {
inline constexpr std::uint8_t kFixed = 0x01;
inline constexpr std::uint8_t kAlways = 0x02;
inline constexpr std::uint8_t kAutoNumber = 0x04;
inline constexpr std::uint8_t kSystem = 0x10;
inline constexpr std::uint8_t kAutoGuid = 0x40;
inline constexpr std::uint8_t kHyperlink = 0x80;
}  // namespace jet::format::column_flag

/// Flags of a real index.
namespace jet::format::index_flag {
inline constexpr std::uint8_t kUnique = 0x01;
inline constexpr std::uint8_t kIgnoreNulls = 0x02;
inline constexpr std::uint8_t kRequired = 0x08;
inline constexpr std::uint8_t kAlways = 0x80;
}  // namespace jet::format::index_flag
