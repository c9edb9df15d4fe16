#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace jet::format {

/// What page 0 of a file says.
struct DatabaseHeader {
  std::uint32_t databaseKey = 0;  ///< key of the pages' encoding; 0: the pages are plain
  std::string password;           ///< UTF-8, at most 20 UTF-16 units; empty: none
  double created = 0;             ///< days since 1899-12-30
  std::uint32_t build = 0;        ///< build number of the engine that made the file
  std::uint16_t codePage = 1252;
  std::uint16_t sortLocale = 0x0409;  ///< LCID of the default sort order
  std::uint16_t sortVersion = 0;      ///< 0: General Legacy
};

/// Reads page 0 of the file called `fileName` (for messages only). Raises NotADatabase when the bytes are too
/// few, do not carry the name of a Jet database or are of another version (the sentence says which),
/// DamagedFile when the creation date, which the password's mask is made of, is no date.
DatabaseHeader DecodeDatabaseHeader(std::span<const std::byte> page, const std::string& fileName);

/// Fills a whole new page 0. Raises InvalidDefinition for a password of more than 20 UTF-16 units or with a
/// character U+0000 in it, or for a creation date that is no date.
void EncodeDatabaseHeader(const DatabaseHeader& header, std::span<std::byte> page);

/// Puts another password, or none, into an existing page 0; every other byte stays. Raises as
/// EncodeDatabaseHeader.
void StorePassword(std::span<std::byte> page, std::string_view password);

}  // namespace jet::format
