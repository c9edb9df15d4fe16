#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "jet/Value.h"
#include "jet/format/TableDefinition.h"

namespace jet::format {

/// The counts in a definition that change with rows.
struct DefinitionCounts {
  struct OfIndex {
    std::uint32_t entriesWhenBuilt = 0;
    std::uint32_t distinctKeys = 0;
  };
  std::uint32_t rows = 0;
  std::uint32_t lastAutoNumber = 0;
  std::vector<OfIndex> indexes;  ///< one a real index; missing ones are zero
};

/// Reads a definition from its stream: the bytes of the first definition page, then those from offset 8 of
/// each further page, cut to 8 + the length at 0x08. `page` is the first page's number; `pages` is left to
/// the caller. Everything is checked against the stream and itself; raises DamagedFile saying what is wrong.
/// Columns of unknown types are kept.
TableDefinition DecodeTableDefinition(std::span<const std::byte> stream, std::uint32_t page);

/// The counts of a stream that DecodeTableDefinition accepts.
DefinitionCounts DecodeDefinitionCounts(std::span<const std::byte> stream);

/// The stream of a definition, for its page heads see definition_page: free bytes and next page are left 0.
/// Logical indexes are written in the order of their names. Raises InvalidDefinition for what has no room in
/// its field.
Bytes EncodeTableDefinition(const TableDefinition& definition, const DefinitionCounts& counts);

/// Size of the values of a fixed-size type; 0 for types whose size the column says.
std::uint16_t FixedSizeOf(ColumnType type);

/// Place in the definition's stream of the root page of a real index.
std::size_t IndexRootAt(std::span<const std::byte> stream, std::size_t index);

}  // namespace jet::format
