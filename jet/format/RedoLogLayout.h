#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "jet/format/PageLayout.h"

/// The layout of a redo log, which is this engine's own. Integers are little-endian.
///
///     header   one sector: mark, version, page size, pages of the database file, salt, checksum
///     unit     its head; a head for each page; the pages as they become, each without its longest run of
///              zeros; a checksum of all of it
///
/// See RedoLog for what they mean.
namespace jet::format {

inline constexpr std::size_t kSectorSize = 512;
inline constexpr std::size_t kPageSectors = kPageSize / kSectorSize;

/// Checksums of the sectors of a page.
using SectorSums = std::array<std::uint32_t, kPageSectors>;
SectorSums SumsOfSectors(std::span<const std::byte, kPageSize> page);
std::uint32_t SumOfSector(std::span<const std::byte> sector);

/// The first sector of a log. A new salt makes units that were written under another one void.
struct LogHeader {
  std::uint32_t pageCount = 0;  ///< pages of the database file before the first unit
  std::uint64_t salt = 0;
};

std::array<std::byte, kSectorSize> EncodeLogHeader(const LogHeader& header);
/// None for bytes that are no header of this version, or a damaged one.
std::optional<LogHeader> DecodeLogHeader(std::span<const std::byte, kSectorSize> sector);
/// Whether the bytes, which may be fewer than a header has, begin as one.
bool BeginsLikeLogHeader(std::span<const std::byte> bytes);

/// What a unit begins with.
struct LogUnitHead {
  static constexpr std::size_t kSize = 32;
  /// What each unit's head begins with, so that units can be found behind a damaged place.
  static constexpr std::size_t kMarkSize = 4;
  static constexpr std::array<std::byte, kMarkSize> kMark = {std::byte{'U'}, std::byte{'N'}, std::byte{'I'},
                                                             std::byte{'T'}};

  std::uint32_t sequence = 0;       ///< 1 for the first unit after the header, and so on
  std::uint64_t salt = 0;           ///< of the header
  std::uint32_t pages = 0;          ///< page heads that follow
  std::uint32_t pageCount = 0;      ///< pages of the database file after this unit
  bool followsSyncedUnits = false;  ///< all units before it were synced when it was written
};

std::array<std::byte, LogUnitHead::kSize> EncodeLogUnitHead(const LogUnitHead& head);
/// None if the mark is missing.
std::optional<LogUnitHead> DecodeLogUnitHead(std::span<const std::byte, LogUnitHead::kSize> bytes);

/// A run of zeros of a page that is not written. Pages are half empty mostly.
struct LogHole {
  std::uint16_t begin = 0;
  std::uint16_t size = 0;

  std::size_t Written() const { return kPageSize - size; }
  bool Fits() const { return std::size_t{begin} + size <= kPageSize; }
};

/// Head of a page in a unit.
struct LogPageHead {
  static constexpr std::size_t kSize = 12 + 4 * kPageSectors;
  enum class Kind : std::uint32_t {
    Changed = 0,
    New = 1,     ///< the database file did not have it when the log was made
    Witness = 2  ///< unchanged, and without bytes in the log: a database file without it is another one
  };

  std::uint32_t number = 0;
  Kind kind = Kind::Changed;
  SectorSums before{};  ///< of the page in the database file when the log was made; 0 for a new page
  LogHole hole;
};

void EncodeLogPageHead(const LogPageHead& head, std::span<std::byte, LogPageHead::kSize> into);
/// None for a kind that there is not, or a hole that is not in the page.
std::optional<LogPageHead> DecodeLogPageHead(std::span<const std::byte, LogPageHead::kSize> bytes);

}  // namespace jet::format
