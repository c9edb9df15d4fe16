#include "jet/dao/Conversion.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/format/TextCodec.h"
#include "jet/sql/ExpressionRules.h"
#include "jet/sql/Literals.h"
#include "jet/sql/Numbers.h"

namespace jet {
namespace {

constexpr std::size_t kMostShown = 40;

std::string Shown(const Value& value) {
  std::string text = value.IsNull() ? "Null" : value.ToText();
  if (text.size() > kMostShown) {
    std::size_t end = kMostShown;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
      --end;  // not inside a character
    text = text.substr(0, end) + "...";
  }
  return "'" + text + "'";
}

class Conversion {
 public:
  Conversion(const Value& value, const format::ColumnDefinition& column, const std::string& table)
      : m_value(&value), m_column(&column), m_table(&table) {}

  Value Convert() const {
    switch (m_column->type) {
      case ColumnType::YesNo:
        return YesNo();
      case ColumnType::Byte:
        return Whole<std::uint8_t>("a whole number from 0 to 255");
      case ColumnType::Integer:
        return Whole<std::int16_t>("a whole number from -32768 to 32767");
      case ColumnType::Long:
        return Whole<std::int32_t>("a whole number from -2147483648 to 2147483647");
      case ColumnType::Currency:
        return Money();
      case ColumnType::Single:
        return Floating<float>();
      case ColumnType::Double:
        return Floating<double>();
      case ColumnType::Decimal:
        return Exact();
      case ColumnType::DateTime:
        return Date();
      case ColumnType::Text:
      case ColumnType::Memo:
        return Text();
      case ColumnType::Guid:
        return Identifier();
      default:
        return Binary();
    }
  }

 private:
  [[noreturn]] void Raise(const std::string& wanted) const {
    throw Error(ErrorNumber::CannotConvert, "The value " + Shown(*m_value) + " does not fit column '" +
                                                m_column->name + "' of table '" + *m_table +
                                                "', which holds " + wanted + ".");
  }

  /// The number that the value is, or that its text says.
  Value Number(const std::string& wanted) const {
    if (sql::IsNumber(*m_value)) return *m_value;
    if (const auto* text = m_value->As<std::string>()) {
      if (std::optional<Value> number = sql::ParseNumber(Trim(*text))) return *std::move(number);
    }
    Raise(wanted);
  }

  template <typename Narrow>
  Value Whole(const char* wanted) const {
    const auto fits = [](std::int64_t number) {
      return number >= std::numeric_limits<Narrow>::min() && number <= std::numeric_limits<Narrow>::max();
    };
    if (const auto* number = m_value->As<std::int32_t>(); number != nullptr && fits(*number)) return *number;
    const std::optional<Decimal> decimal = sql::ToDecimal(Number(wanted));
    const std::optional<std::int64_t> whole = decimal ? sql::ToInteger(*decimal) : std::nullopt;
    if (!whole || !fits(*whole)) Raise(wanted);
    return static_cast<std::int32_t>(*whole);
  }

  Value Money() const {
    const std::string wanted = "amounts of money up to 922337203685477.5807";
    const std::optional<Decimal> decimal = sql::ToDecimal(Number(wanted));
    std::optional<Decimal> scaled = decimal ? sql::Rescale(*decimal, sql::kCurrencyScale) : std::nullopt;
    if (!scaled) Raise(wanted);
    scaled->scale = 0;
    const std::optional<std::int64_t> units = sql::ToInteger(*scaled);
    if (!units) Raise(wanted);
    return Currency{*units};
  }

  template <typename Float>
  Value Floating() const {
    const std::string wanted = "numbers";
    const double number = sql::ToDouble(Number(wanted));
    if (!(std::abs(number) <= static_cast<double>(std::numeric_limits<Float>::max())))
      Raise(wanted + " of a smaller range");
    return number == 0 ? Float{0} : static_cast<Float>(number);  // zero has one sign, and one index key
  }

  Value Exact() const {
    const std::string wanted = "numbers of up to " + std::to_string(m_column->precision) + " digits, " +
                               std::to_string(m_column->scale) + " of them decimals";
    const std::optional<Decimal> decimal = sql::ToDecimal(Number(wanted));
    std::optional<Decimal> scaled = decimal ? sql::Rescale(*decimal, m_column->scale) : std::nullopt;
    if (!scaled || sql::DigitCount(*scaled) > m_column->precision) Raise(wanted);
    if (scaled->words == decltype(scaled->words){}) scaled->negative = false;
    return *scaled;
  }

  Value YesNo() const {
    if (const auto* text = m_value->As<std::string>()) {
      const std::string_view word = Trim(*text);
      if (SameWord(word, "true") || SameWord(word, "yes")) return true;
      if (SameWord(word, "false") || SameWord(word, "no")) return false;
    }
    return sql::CompareNumbers(Number("yes/no values"), Value(std::int32_t{0})) != 0;
  }

  Value Date() const {
    const std::string wanted = "dates from 0100-01-01 00:00 to 9999-12-31";
    std::optional<DateTime> date;
    if (const auto* held = m_value->As<DateTime>()) date = *held;
    if (const auto* text = m_value->As<std::string>()) date = sql::ParseDate(Trim(*text));
    if (!date || !date->IsInRange()) Raise(wanted);
    return date->days == 0 ? DateTime{} : *date;  // zero has one sign, and one index key
  }

  Value Text() const {
    if (m_value->As<Bytes>() != nullptr) Raise("text");
    std::string text = m_value->ToText();
    std::size_t length = 0;
    try {
      length = format::Utf16Length(text);
    } catch (const Error&) {
      throw Error(ErrorNumber::CannotConvert, "The text for column '" + m_column->name + "' of table '" +
                                                  *m_table + "' is not valid UTF-8.");
    }
    if (m_column->type == ColumnType::Text && length > m_column->size / 2) {
      throw Error(ErrorNumber::TextTooLong, "The text " + Shown(*m_value) + " has " + std::to_string(length) +
                                                " characters; column '" + m_column->name + "' of table '" +
                                                *m_table + "' holds " + std::to_string(m_column->size / 2) +
                                                ".");
    }
    return text;
  }

  Value Identifier() const {
    if (m_value->As<Guid>() != nullptr) return *m_value;
    if (const auto* text = m_value->As<std::string>()) {
      if (const std::optional<Guid> guid = sql::ParseGuid(Trim(*text))) return *guid;
    }
    Raise("GUIDs");
  }

  Value Binary() const {
    const auto* const bytes = m_value->As<Bytes>();
    if (bytes == nullptr) Raise("binary data");
    if (m_column->type != ColumnType::Ole && bytes->size() > m_column->size)
      Raise("up to " + std::to_string(m_column->size) + " bytes");
    return *bytes;
  }

  const Value* m_value;
  const format::ColumnDefinition* m_column;
  const std::string* m_table;
};

}  // namespace

Value ConvertForColumn(const Value& value, const format::ColumnDefinition& column, const std::string& table) {
  if (value.IsNull()) return column.type == ColumnType::YesNo ? Value(false) : Value();
  return Conversion(value, column, table).Convert();
}

Value EvaluateDefault(const std::string& expression) {
  if (std::optional<Value> constant = ConstantDefault(expression)) return *std::move(constant);
  return sql::EvaluateConstant(expression);
}

std::optional<Value> ConstantDefault(const std::string& expression) {
  std::string_view text = Trim(expression);
  if (!text.empty() && text.front() == '=') text = Trim(text.substr(1));
  if (std::optional<Value> number = sql::ParseNumber(text)) return number;
  if (SameWord(text, "true") || SameWord(text, "yes")) return Value(true);
  if (SameWord(text, "false") || SameWord(text, "no")) return Value(false);
  if (SameWord(text, "null")) return Value();
  if (text.size() < 2 || (text.front() != '"' && text.front() != '\'') || text.back() != text.front())
    return std::nullopt;
  // A text in quotes; a quote inside it is doubled.
  const char quote = text.front();
  const std::string_view inside = text.substr(1, text.size() - 2);
  std::string constant;
  for (std::size_t i = 0; i < inside.size(); ++i) {
    if (inside[i] == quote && (++i == inside.size() || inside[i] != quote)) return std::nullopt;
    constant += inside[i];
  }
  return Value(std::move(constant));
}

}  // namespace jet
