#include "jet/format/ValueCodec.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <string>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

// Decimal:  | sign, 1 | magnitude, four words of 4, the most significant first |
constexpr std::byte kNegative{0x80};
constexpr std::size_t kWordsAt = 1;

Decimal LoadDecimal(const std::byte* stored, std::uint8_t scale) {
  Decimal decimal;
  decimal.negative = (stored[0] & kNegative) != std::byte{0};
  decimal.scale = scale;
  for (std::size_t i = 0; i < decimal.words.size(); ++i) {
    decimal.words[decimal.words.size() - 1 - i] = LoadU32(stored + kWordsAt + 4 * i);
  }
  return decimal;
}

void StoreDecimal(const Decimal& decimal, std::byte* stored) {
  stored[0] = decimal.negative ? kNegative : std::byte{0};
  for (std::size_t i = 0; i < decimal.words.size(); ++i) {
    StoreU32(stored + kWordsAt + 4 * i, decimal.words[decimal.words.size() - 1 - i]);
  }
}

Error Unfit(const ColumnDefinition& column, const char* why) {
  return Error(ErrorNumber::CannotConvert,
               "The value " + std::string(why) + " of the column '" + column.name + "'.");
}

/// The value's alternative T, or an error.
template <typename T>
const T& Need(const ColumnDefinition& column, const Value& value) {
  const T* const held = value.As<T>();
  if (held == nullptr) throw Unfit(column, "is not of the type");
  return *held;
}

/// An integer of the value within the range of a narrower type.
template <typename Narrow>
std::int32_t NeedWithin(const ColumnDefinition& column, const Value& value) {
  const auto number = Need<std::int32_t>(column, value);
  if (number < std::numeric_limits<Narrow>::min() || number > std::numeric_limits<Narrow>::max()) {
    throw Unfit(column, "is outside the range");
  }
  return number;
}

/// Room for `size` more bytes at the end of `into`.
std::byte* Grow(Bytes& into, std::size_t size) {
  const std::size_t at = into.size();
  into.resize(at + size);
  return into.data() + at;
}

void AppendTextValue(const ColumnDefinition& column, const std::string& text, Bytes& into) {
  if (2 * Utf16Length(text, LoneSurrogates::Keep) > column.size) {
    throw Error(ErrorNumber::TextTooLong, "The text for the column '" + column.name + "' is longer than " +
                                              std::to_string(column.size / 2) + " characters.");
  }
  const std::size_t begin = into.size();
  AppendText(text, column.compressed && !column.IsFixed(), into, LoneSurrogates::Keep);
  if (!column.IsFixed()) return;
  for (std::size_t size = into.size() - begin; size + 1 < column.size; size += 2)
    StoreU16(Grow(into, 2), u' ');
}

void AppendBytesValue(const ColumnDefinition& column, const Bytes& bytes, Bytes& into) {
  if (bytes.size() > column.size) {
    throw Error(ErrorNumber::CannotConvert, "The value for the column '" + column.name + "' is longer than " +
                                                std::to_string(column.size) + " bytes.");
  }
  into.insert(into.end(), bytes.begin(), bytes.end());
  if (column.IsFixed()) into.insert(into.end(), column.size - bytes.size(), std::byte{0});
}

}  // namespace

Value DecodeValue(const ColumnDefinition& column, std::span<const std::byte> stored) {
  const std::byte* const bytes = stored.data();
  if (column.type == ColumnType::Long && stored.size() == 4) return static_cast<std::int32_t>(LoadU32(bytes));
  const std::uint16_t size = FixedSizeOf(column.type);
  if (size != 0 && stored.size() != size) {
    throw Error(ErrorNumber::DamagedFile, "A value of the column '" + column.name + "' is damaged: it has " +
                                              std::to_string(stored.size()) + " bytes instead of " +
                                              std::to_string(size) + ".");
  }
  switch (column.type) {
    case ColumnType::Byte:
      return std::int32_t{LoadU8(bytes)};
    case ColumnType::Integer:
      return std::int32_t{static_cast<std::int16_t>(LoadU16(bytes))};
    case ColumnType::Long:
      return static_cast<std::int32_t>(LoadU32(bytes));
    case ColumnType::Currency:
      return Currency{static_cast<std::int64_t>(LoadU64(bytes))};
    case ColumnType::Single:
      return std::bit_cast<float>(LoadU32(bytes));
    case ColumnType::Double:
      return std::bit_cast<double>(LoadU64(bytes));
    case ColumnType::DateTime:
      return DateTime{std::bit_cast<double>(LoadU64(bytes))};
    case ColumnType::Decimal:
      return LoadDecimal(bytes, column.scale);
    case ColumnType::Guid: {
      Guid guid;
      std::transform(stored.begin(), stored.end(), guid.bytes.begin(),
                     [](std::byte b) { return std::to_integer<std::uint8_t>(b); });
      return guid;
    }
    case ColumnType::Text: {
      std::string text;
      try {
        DecodeText(stored, text);
      } catch (Error& error) {
        error.AddContext("column '" + column.name + "'");
        throw;
      }
      return text;
    }
    case ColumnType::Binary:
    case ColumnType::Block:
      return Bytes(stored.begin(), stored.end());
    default:
      throw Error(ErrorNumber::DamagedFile, "The column '" + column.name +
                                                "' is of a type that cannot be read, " +
                                                std::to_string(static_cast<int>(column.type)) + ".");
  }
}

void AppendValue(const ColumnDefinition& column, const Value& value, Bytes& into) {
  switch (column.type) {
    case ColumnType::Byte:
      StoreU8(Grow(into, 1), static_cast<std::uint8_t>(NeedWithin<std::uint8_t>(column, value)));
      return;
    case ColumnType::Integer:
      StoreU16(Grow(into, 2), static_cast<std::uint16_t>(NeedWithin<std::int16_t>(column, value)));
      return;
    case ColumnType::Long:
      StoreU32(Grow(into, 4), static_cast<std::uint32_t>(Need<std::int32_t>(column, value)));
      return;
    case ColumnType::Currency:
      StoreU64(Grow(into, 8), static_cast<std::uint64_t>(Need<Currency>(column, value).scaled));
      return;
    case ColumnType::Single:
      StoreU32(Grow(into, 4), std::bit_cast<std::uint32_t>(Need<float>(column, value)));
      return;
    case ColumnType::Double:
      StoreU64(Grow(into, 8), std::bit_cast<std::uint64_t>(Need<double>(column, value)));
      return;
    case ColumnType::DateTime:
      StoreU64(Grow(into, 8), std::bit_cast<std::uint64_t>(Need<DateTime>(column, value).days));
      return;
    case ColumnType::Decimal: {
      const auto& decimal = Need<Decimal>(column, value);
      if (decimal.scale != column.scale) throw Unfit(column, "does not have the decimal places");
      StoreDecimal(decimal, Grow(into, FixedSizeOf(ColumnType::Decimal)));
      return;
    }
    case ColumnType::Guid:
      for (const std::uint8_t byte : Need<Guid>(column, value).bytes)
        into.push_back(std::byte{byte});
      return;
    case ColumnType::Text:
      AppendTextValue(column, Need<std::string>(column, value), into);
      return;
    case ColumnType::Binary:
    case ColumnType::Block:
      AppendBytesValue(column, Need<Bytes>(column, value), into);
      return;
    default:
      throw Unfit(column, "cannot be stored, for the engine does not write the type");
  }
}

}  // namespace jet::format
