#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace jet {

/// Column types, with the codes that the file stores.
enum class ColumnType : std::uint8_t {
  YesNo = 1,
  Byte = 2,      ///< unsigned, 8 bits
  Integer = 3,   ///< signed, 16 bits
  Long = 4,      ///< signed, 32 bits
  Currency = 5,  ///< signed, 64 bits, in units of 1/10000
  Single = 6,
  Double = 7,
  DateTime = 8,
  Binary = 9,  ///< up to 510 bytes
  Text = 10,   ///< up to 255 characters
  Ole = 11,    ///< long binary
  Memo = 12,   ///< long text
  Guid = 15,
  Decimal = 16,
  Block = 17,  ///< fixed binary, in system tables
};

struct Null {
  friend bool operator==(Null, Null) = default;
};

/// Money: `scaled` is the amount times 10000.
struct Currency {
  std::int64_t scaled = 0;
  friend auto operator<=>(const Currency&, const Currency&) = default;
};

/// A point in time: days since 1899-12-30; the fraction is the time of day, also for negative days.
struct DateTime {
  double days = 0;

  /// Whether it is a moment from 0100-01-01 00:00 to the end of 9999, which is what files can hold.
  bool IsInRange() const { return days >= -657434 && days < 2958466; }
  friend auto operator<=>(const DateTime&, const DateTime&) = default;
};

struct Guid {
  std::array<std::uint8_t, 16> bytes{};  ///< in the order in which the file stores them

  /// Where the bytes, in the order in which they are written as text, stand in `bytes`.
  static constexpr std::array<std::uint8_t, 16> kAsWritten{3, 2, 1,  0,  5,  4,  7,  6,
                                                           8, 9, 10, 11, 12, 13, 14, 15};
  /// The bytes in the order in which they are written as text.
  std::array<std::uint8_t, 16> AsWritten() const {
    std::array<std::uint8_t, 16> written{};
    for (std::size_t i = 0; i < written.size(); ++i)
      written[i] = bytes[kAsWritten[i]];
    return written;
  }
  friend bool operator==(const Guid&, const Guid&) = default;
  /// The order of their texts, and of indexes.
  friend auto operator<=>(const Guid& a, const Guid& b) { return a.AsWritten() <=> b.AsWritten(); }
};

/// A decimal number: the 96 or 128 bits of the magnitude, least significant word first, times 10^-scale.
struct Decimal {
  std::array<std::uint32_t, 4> words{};
  std::uint8_t scale = 0;  ///< 0..28
  bool negative = false;
  friend bool operator==(const Decimal&, const Decimal&) = default;
};

using Bytes = std::vector<std::byte>;

/// One value of a column, or a value to be written into one. Text is UTF-8.
///
/// Byte, Integer and Long are all held as 32-bit integers; which of them a column is, its `ColumnType` says.
class Value {
 public:
  using Variant = std::variant<Null, bool, std::int32_t, float, double, Currency, DateTime, Decimal,
                               std::string, Bytes, Guid>;

  Value() = default;
  Value(Null) {}
  Value(bool value) : m_data(value) {}
  Value(std::int32_t value) : m_data(value) {}
  Value(float value) : m_data(value) {}
  Value(double value) : m_data(value) {}
  Value(Currency value) : m_data(value) {}
  Value(DateTime value) : m_data(value) {}
  Value(Decimal value) : m_data(value) {}
  Value(std::string value) : m_data(std::move(value)) {}
  Value(std::string_view value) : m_data(std::string(value)) {}
  Value(const char* value) : m_data(std::string(value)) {}
  Value(Bytes value) : m_data(std::move(value)) {}
  Value(Guid value) : m_data(value) {}

  bool IsNull() const { return std::holds_alternative<Null>(m_data); }
  const Variant& Data() const { return m_data; }

  /// The alternative `T`, or nullptr when the value is of another kind.
  template <typename T>
  const T* As() const {
    return std::get_if<T>(&m_data);
  }

  /// The value joined to an empty text: Null gives "", yes/no "True" or "False", numbers their shortest
  /// decimal form ("17", "-2.5"; up to 15 digits for doubles, 7 for singles), dates "YYYY-MM-DD" with "
  /// hh:mm:ss" when there is a time of day, GUIDs "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", binary its bytes
  /// as hexadecimal digits.
  std::string ToText() const;

  /// Same kind and same content. (Comparison by the rules of the select dialect is in sql/.)
  friend bool operator==(const Value& a, const Value& b) { return a.m_data == b.m_data; }

 private:
  Variant m_data;
};

}  // namespace jet
