#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "jet/Value.h"

/// Text in the file is UTF-16, little-endian, or "compressed" to a byte a character; inside the engine it is
/// UTF-8.
///
/// A lone surrogate, which UTF-8 cannot say, is read as U+FFFD; rows keep the very bytes of columns that are
/// not changed, so reading such a text does not lose it.
namespace jet::format {

/// What becomes of a surrogate without its partner.
enum class LoneSurrogates {
  Replace,  ///< U+FFFD
  Keep,     ///< three bytes, as if it were a character, which other functions accept only with this option
};

/// Reads a stored text, plain or compressed, into `into`, replacing what it held. Raises DamagedFile for an
/// odd number of bytes, or compressed text that ends inside a character.
void DecodeText(std::span<const std::byte> stored, std::string& into,
                LoneSurrogates lone = LoneSurrogates::Replace);

/// A compressed text of ASCII characters only, as UTF-8 where it is stored; none for any other text.
std::optional<std::string_view> AsciiIn(std::span<const std::byte> stored);

/// What stands behind the mark of a compressed text: at first a byte a character, up to a byte 0. Empty for a
/// plain text.
inline std::span<const std::byte> CompressedBytes(std::span<const std::byte> stored) {
  const bool isMarked = stored.size() >= 2 && stored[0] == std::byte{0xFF} && stored[1] == std::byte{0xFE};
  return isMarked ? stored.subspan(2) : std::span<const std::byte>();
}

/// The stored form of a text: compressed when `compress` is set and that is shorter and possible. Raises
/// CannotConvert when the text is not UTF-8. A text that begins with U+FEFF is compressed in any case, since
/// plain it would be taken for compressed; one that cannot be raises CannotConvert.
/// With `lone` Keep, surrogates in three bytes are text too.
Bytes EncodeText(std::string_view utf8, bool compress, LoneSurrogates lone = LoneSurrogates::Replace);
/// Appends it.
void AppendText(std::string_view utf8, bool compress, Bytes& into,
                LoneSurrogates lone = LoneSurrogates::Replace);

/// Number of UTF-16 units of a text, the length that limits of columns and names count. Raises CannotConvert
/// when the text is not UTF-8.
std::size_t Utf16Length(std::string_view utf8, LoneSurrogates lone = LoneSurrogates::Replace);

/// UTF-8 of UTF-16 units; a lone surrogate gives U+FFFD.
std::string Utf16ToUtf8(std::u16string_view units);

/// UTF-16 units of a UTF-8 text. Raises CannotConvert when the text is not UTF-8.
std::u16string Utf8ToUtf16(std::string_view utf8, LoneSurrogates lone = LoneSurrogates::Replace);

/// UTF-8 of plain little-endian UTF-16 in bytes, as names in table definitions are stored. Raises DamagedFile
/// for an odd number of bytes.
std::string DecodePlainText(std::span<const std::byte> stored);

/// NextCodePoint; but three bytes of a surrogate, coded as if it were a character, are that surrogate.
char32_t NextCodePointOrSurrogate(std::string_view utf8, std::size_t& position);

}  // namespace jet::format
