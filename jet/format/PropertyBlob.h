#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Value.h"

namespace jet::format {

/// The properties of a table and of its columns, as the catalog keeps them (LvProp). What is not understood
/// is kept: decoding and encoding again gives the same bytes.
struct PropertyBlob {
  static constexpr std::uint8_t kDefinedByEngine = 1;  ///< flag of the properties that definitions set
  static constexpr std::uint16_t kObjectBlock = 0;     ///< properties of the table itself
  static constexpr std::uint16_t kColumnBlock = 1;     ///< properties of the column called `owner`

  struct Property {
    std::string name;
    std::uint8_t flag = kDefinedByEngine;
    std::uint8_t type = 0;  ///< a column type
    Bytes value;
  };
  struct Block {
    std::uint16_t kind = kColumnBlock;
    std::string owner;
    std::vector<Property> properties;
    Bytes unknown;  ///< whole content of a block of another kind
  };

  std::vector<std::string> names;  ///< names in the order of their numbers; new ones are added when encoding
  std::vector<Block> blocks;

  /// The block of a column, its name in any case; nullptr when it has none.
  const Block* FindColumn(std::string_view column) const;
  /// The block of the table itself; nullptr when it has none.
  const Block* FindObject() const;
};

/// A property of a block by its name in any case; nullptr when there is none.
const PropertyBlob::Property* FindProperty(const PropertyBlob::Block& block, std::string_view name);

/// Raises DamagedFile for bytes that are no property blob. An empty span is an empty blob.
PropertyBlob DecodeProperties(std::span<const std::byte> blob);

/// Raises InvalidDefinition for a name or value too long for its length field.
Bytes EncodeProperties(const PropertyBlob& properties);

}  // namespace jet::format
