#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "jet/Value.h"

namespace jet::format {

// What a row stores for a memo or OLE value.
//
//   | length and mode, 4 | row pointer of the first piece, 4 | tag, 4 | the value itself, if inline
//
//   mode: bit 31 inline | bit 30 in one piece | neither: a chain of pieces
//
/// How long a long value is and where it lies.
struct LongValueReference {
  enum class Mode { Inline, OnePiece, Chained };
  static constexpr std::size_t kSize = 12;               ///< bytes of the head, before an inline value
  static constexpr std::size_t kLongestInline = 64;      ///< longer values are written on pages of their own
  static constexpr std::uint32_t kLongest = 0x3FFFFFFF;  ///< bytes of the longest value

  Mode mode = Mode::Inline;
  std::uint32_t length = 0;   ///< bytes of the whole value
  std::uint32_t pointer = 0;  ///< row pointer; 0 for an inline value
  std::uint32_t tag = 0;      ///< chained: what the pages of the chain carry

  /// Reads the head of a stored value; an inline value is stored.subspan(kSize), whose size has been checked.
  /// Raises DamagedFile naming the column.
  static LongValueReference Decode(std::span<const std::byte> stored, const std::string& columnName);
  /// Appends the head; an inline value goes behind it.
  void AppendTo(Bytes& into) const;
};

}  // namespace jet::format
