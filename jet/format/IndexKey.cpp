#include "jet/format/IndexKey.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

#include "jet/format/Bytes.h"
#include "jet/format/SortKey.h"

namespace jet::format {
namespace {

// What an index stores for a column, ascending:  | 7f | value |  or the single byte 00 for Null. Descending
// all of it is inverted, and text gets one more byte 00.
constexpr std::byte kNullFlag{0x00};
constexpr std::byte kValueFlag{0x7F};
constexpr std::byte kTrueKey{0x00};
constexpr std::byte kFalseKey{0xFF};
constexpr std::byte kSignBit{0x80};
constexpr std::byte kDescendingTextEnd{0x00};
constexpr std::byte kPositiveDecimal{0xFF};
constexpr std::byte kNegativeDecimal{0x00};
// Binary: groups of 8 bytes, the last filled up with zeros. Behind each group stands 09, behind the last its
// bytes in use.
constexpr std::size_t kGroup = 8;
constexpr std::byte kMoreGroups{0x09};

constexpr std::uint16_t kGeneralLocale = 0x0409;

using Key = std::vector<std::byte>;

template <typename Unsigned>
void AppendBig(Unsigned bits, Key& key) {
  const std::size_t at = key.size();
  key.resize(at + sizeof(Unsigned));
  for (std::size_t i = sizeof(Unsigned); i > 0; --i, bits = static_cast<Unsigned>(bits >> 4 >> 4))
    key[at + i - 1] = static_cast<std::byte>(bits & 0xFF);
}

/// Big-endian with the sign bit flipped.
template <typename Signed>
void AppendSigned(Signed value, Key& key) {
  const std::size_t at = key.size();
  AppendBig(static_cast<std::make_unsigned_t<Signed>>(value), key);
  key[at] ^= kSignBit;
}

/// Big-endian; negative numbers inverted, others with the sign bit flipped.
template <typename Bits>
void AppendFloat(Bits bits, Key& key) {
  const bool negative = bits >> (8 * sizeof(Bits) - 1) != 0;
  const std::size_t at = key.size();
  AppendBig(negative ? static_cast<Bits>(~bits) : bits, key);
  if (!negative) key[at] ^= kSignBit;
}

void AppendGroups(std::span<const std::byte> bytes, Key& key) {
  do {
    const std::size_t used = std::min(kGroup, bytes.size());
    key.insert(key.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(used));
    key.insert(key.end(), kGroup - used, std::byte{0});
    bytes = bytes.subspan(used);
    key.push_back(bytes.empty() ? static_cast<std::byte>(used) : kMoreGroups);
  } while (!bytes.empty());
}

/// A sign byte and the 16 bytes of the magnitude, highest first, inverted if negative.
bool AppendDecimal(const Decimal& decimal, const ColumnDefinition& column, Key& key) {
  if (decimal.scale != column.scale) return false;
  key.push_back(decimal.negative ? kNegativeDecimal : kPositiveDecimal);
  const std::size_t at = key.size();
  for (std::size_t i = decimal.words.size(); i > 0; --i)
    AppendBig(decimal.words[i - 1], key);
  if (decimal.negative) {
    for (std::size_t i = at; i < key.size(); ++i)
      key[i] = ~key[i];
  }
  return true;
}

template <typename Narrow>
const std::int32_t* AsWithin(const Value& value) {
  const auto* const number = value.As<std::int32_t>();
  const bool fits = number != nullptr && *number >= std::numeric_limits<Narrow>::min() &&
                    *number <= std::numeric_limits<Narrow>::max();
  return fits ? number : nullptr;
}

/// Appends the ascending bytes of a value that is not Null; false, possibly after some bytes, when it has
/// none.
bool AppendAscending(const Value& value, const ColumnDefinition& column, Key& key) {
  switch (column.type) {
    case ColumnType::YesNo:
      if (const auto* yes = value.As<bool>()) return key.push_back(*yes ? kTrueKey : kFalseKey), true;
      return false;
    case ColumnType::Byte:
      if (const auto* number = AsWithin<std::uint8_t>(value))
        return key.push_back(static_cast<std::byte>(*number)), true;
      return false;
    case ColumnType::Integer:
      if (const auto* number = AsWithin<std::int16_t>(value)) {
        return AppendSigned(static_cast<std::int16_t>(*number), key), true;
      }
      return false;
    case ColumnType::Long:
      if (const auto* number = value.As<std::int32_t>()) return AppendSigned(*number, key), true;
      return false;
    case ColumnType::Currency:
      if (const auto* money = value.As<Currency>()) return AppendSigned(money->scaled, key), true;
      return false;
    case ColumnType::Single:
      if (const auto* number = value.As<float>())
        return AppendFloat(std::bit_cast<std::uint32_t>(*number), key), true;
      return false;
    case ColumnType::Double:
      if (const auto* number = value.As<double>())
        return AppendFloat(std::bit_cast<std::uint64_t>(*number), key), true;
      return false;
    case ColumnType::DateTime:
      if (const auto* date = value.As<DateTime>())
        return AppendFloat(std::bit_cast<std::uint64_t>(date->days), key), true;
      return false;
    case ColumnType::Decimal:
      if (const auto* decimal = value.As<Decimal>()) return AppendDecimal(*decimal, column, key);
      return false;
    case ColumnType::Text:
    case ColumnType::Memo:
      if (const auto* text = value.As<std::string>()) return AppendTextKey(*text, key);
      return false;
    case ColumnType::Binary:
      if (const auto* bytes = value.As<Bytes>()) return AppendGroups(*bytes, key), true;
      return false;
    case ColumnType::Guid:
      if (const auto* guid = value.As<Guid>()) {
        const auto written = guid->AsWritten();
        return AppendGroups(std::as_bytes(std::span(written)), key), true;
      }
      return false;
    default:
      return false;
  }
}

/// Appends the flag and, by `append`, the ascending bytes of a value that is not Null.
template <typename Append>
bool AppendFlagged(Key& key, bool isNull, const ColumnDefinition& column, bool ascending,
                   const Append& append) {
  if (!HasKnownKeyForm(column, ascending)) return false;
  const std::size_t before = key.size();
  if (!isNull) {
    key.push_back(kValueFlag);
    if (!append()) {
      key.resize(before);
      return false;
    }
  } else if (column.type == ColumnType::YesNo) {
    key.push_back(kValueFlag);
    key.push_back(kFalseKey);
  } else {
    key.push_back(kNullFlag);
  }
  if (ascending) return true;
  for (std::size_t i = before; i < key.size(); ++i)
    key[i] = ~key[i];
  const bool isText = column.type == ColumnType::Text || column.type == ColumnType::Memo;
  if (isText && !isNull) key.push_back(kDescendingTextEnd);
  // Negative decimals come first in descending keys too.
  if (column.type == ColumnType::Decimal && !isNull) key[before + 1] = ~key[before + 1];
  return true;
}

}  // namespace

bool HasKnownKeyForm(const ColumnDefinition& column, bool ascending) {
  switch (column.type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::DateTime:
    case ColumnType::Decimal:
      return true;
    case ColumnType::Text:
    case ColumnType::Memo:
      return column.sortLocale == kGeneralLocale && column.sortVariant == 0 && column.sortVersion == 0;
    case ColumnType::Binary:
    case ColumnType::Guid:
      return ascending;
    default:
      return false;
  }
}

bool AppendKeyColumn(std::vector<std::byte>& key, const Value& value, const ColumnDefinition& column,
                     bool ascending) {
  return AppendFlagged(key, value.IsNull(), column, ascending,
                       [&] { return AppendAscending(value, column, key); });
}

bool AppendTextKeyColumn(std::vector<std::byte>& key, std::optional<std::string_view> text,
                         const ColumnDefinition& column, bool ascending) {
  return AppendFlagged(key, !text, column, ascending, [&] { return AppendTextKey(*text, key); });
}

}  // namespace jet::format
