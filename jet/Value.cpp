#include "jet/Value.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <type_traits>

namespace jet {
namespace {

constexpr int kDigitsOfDouble = 15;
constexpr int kDigitsOfSingle = 7;
constexpr double kFirstDay = -657434;  // 100-01-01
constexpr double kLastDay = 2958466;   // the day after 9999-12-31
constexpr int kSecondsOfDay = 86400;
constexpr std::size_t kDecimalsOfCurrency = 4;

std::string NumberText(double value, int digits) {
  char buffer[64];
  const auto end =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits).ptr;
  const std::string text(buffer, end);
  return text == "-0" ? "0" : text;
}

void AppendPadded(std::string& text, std::int64_t value, std::size_t width) {
  const std::string digits = std::to_string(value);
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text += digits;
}

/// Digits of a number times 10^-scale, without zeros at the end of its decimals.
std::string ScaledText(std::string digits, std::size_t scale, bool negative) {
  if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');
  std::string decimals = digits.substr(digits.size() - scale);
  digits.resize(digits.size() - scale);
  decimals.resize(decimals.find_last_not_of('0') + 1);
  const bool zero = digits == "0" && decimals.empty();
  std::string text = negative && !zero ? "-" : "";
  text += digits;
  if (!decimals.empty()) text += "." + decimals;
  return text;
}

std::string TextOf(Currency money) {
  const auto magnitude = static_cast<std::uint64_t>(money.scaled);
  const bool negative = money.scaled < 0;
  return ScaledText(std::to_string(negative ? 0 - magnitude : magnitude), kDecimalsOfCurrency, negative);
}

std::string TextOf(const Decimal& decimal) {
  auto words = decimal.words;
  std::string digits;
  while (words != decltype(words){}) {
    std::uint64_t rest = 0;
    for (std::size_t i = words.size(); i > 0; --i) {
      const std::uint64_t part = rest << 32 | words[i - 1];
      words[i - 1] = static_cast<std::uint32_t>(part / 10);
      rest = part % 10;
    }
    digits.insert(digits.begin(), static_cast<char>('0' + rest));
  }
  return ScaledText(digits.empty() ? "0" : digits, decimal.scale, decimal.negative);
}

std::string TextOf(DateTime date) {
  if (!(date.days > kFirstDay - 1 && date.days < kLastDay)) return NumberText(date.days, kDigitsOfDouble);
  double day = std::trunc(date.days);
  auto seconds = static_cast<int>(std::lround(std::abs(date.days - day) * kSecondsOfDay));
  if (seconds == kSecondsOfDay) {
    seconds = 0;
    day += 1;
  }
  using namespace std::chrono;
  const year_month_day civil{sys_days{year{1899} / December / 30} + std::chrono::days{static_cast<int>(day)}};
  std::string text;
  AppendPadded(text, static_cast<int>(civil.year()), 4);
  text += '-';
  AppendPadded(text, static_cast<unsigned>(civil.month()), 2);
  text += '-';
  AppendPadded(text, static_cast<unsigned>(civil.day()), 2);
  if (seconds == 0) return text;
  text += ' ';
  AppendPadded(text, seconds / 3600, 2);
  text += ':';
  AppendPadded(text, seconds / 60 % 60, 2);
  text += ':';
  AppendPadded(text, seconds % 60, 2);
  return text;
}

void AppendHex(std::string& text, std::uint8_t byte) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  text += kDigits[byte >> 4];
  text += kDigits[byte & 15];
}

std::string TextOf(const Guid& guid) {
  static constexpr int kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
  std::string text = "{";
  for (const int place : kOrder) {
    if (place < 0) {
      text += '-';
    } else {
      AppendHex(text, guid.bytes[static_cast<std::size_t>(place)]);
    }
  }
  return text + "}";
}

std::string TextOf(const Bytes& bytes) {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const std::byte byte : bytes)
    AppendHex(text, std::to_integer<std::uint8_t>(byte));
  return text;
}

std::string TextOf(Null) {
  return {};
}
std::string TextOf(bool value) {
  return value ? "True" : "False";
}
std::string TextOf(std::int32_t value) {
  return std::to_string(value);
}
std::string TextOf(float value) {
  return NumberText(static_cast<double>(value), kDigitsOfSingle);
}
std::string TextOf(double value) {
  return NumberText(value, kDigitsOfDouble);
}
std::string TextOf(const std::string& text) {
  return text;
}

}  // namespace

std::string Value::ToText() const {
  return std::visit([](const auto& value) { return TextOf(value); }, m_data);
}

}  // namespace jet
