#include "jet/sql/Literals.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <system_error>

#include "jet/Text.h"
#include "jet/sql/Characters.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

constexpr int kMostDecimalDigits = 28;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr double kSecondsOfDay = 86400;

/// Whether the text is  [sign] digits [. digits] [e [sign] digits]  with a digit before the exponent.
bool HasNumberForm(std::string_view text) {
  std::size_t at = 0;
  const auto digits = [&] {
    const std::size_t from = at;
    while (at < text.size() && IsDigit(text[at]))
      ++at;
    return at - from;
  };
  const auto sign = [&] {
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
  };
  sign();
  std::size_t count = digits();
  if (at < text.size() && text[at] == '.') {
    ++at;
    count += digits();
  }
  if (count == 0) return false;
  if (at < text.size() && (text[at] == 'e' || text[at] == 'E')) {
    ++at;
    sign();
    if (digits() == 0) return false;
  }
  return at == text.size();
}

std::optional<Decimal> ReadDecimal(std::string_view text, bool negative) {
  Decimal decimal;
  bool afterPoint = false;
  for (const char c : text) {
    if (c == '.') {
      afterPoint = true;
    } else if (!AppendDigit(decimal, static_cast<std::uint32_t>(c - '0'))) {
      return std::nullopt;
    } else if (afterPoint && ++decimal.scale > kMostDecimalDigits) {
      return std::nullopt;
    }
  }
  if (DigitCount(decimal) > kMostDecimalDigits) return std::nullopt;
  decimal.negative = negative;
  return decimal;
}

/// Reads exactly `width` digits from the front of the text.
std::optional<int> TakeDigits(std::string_view& text, std::size_t width) {
  if (text.size() < width ||
      !std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(width), IsDigit))
    return std::nullopt;
  int value = 0;
  for (const char c : text.substr(0, width))
    value = value * 10 + (c - '0');
  text.remove_prefix(width);
  return value;
}

bool Take(std::string_view& text, char expected) {
  if (text.empty() || text.front() != expected) return false;
  text.remove_prefix(1);
  return true;
}

/// Seconds since midnight of "19:30" or "19:30:15".
std::optional<int> ReadTime(std::string_view text) {
  const std::optional<int> hours = TakeDigits(text, 2);
  if (!hours || *hours > 23 || !Take(text, ':')) return std::nullopt;
  const std::optional<int> minutes = TakeDigits(text, 2);
  if (!minutes || *minutes > 59) return std::nullopt;
  std::optional<int> seconds = 0;
  if (Take(text, ':')) seconds = TakeDigits(text, 2);
  if (!seconds || *seconds > 59 || !text.empty()) return std::nullopt;
  return (*hours * 60 + *minutes) * 60 + *seconds;
}

std::optional<int> TakeOneOrTwoDigits(std::string_view& text) {
  return TakeDigits(text, text.size() > 1 && IsDigit(text[1]) ? 2 : 1);
}

/// The same of "7:30:15 PM", also with one digit for the hour, and without AM or PM.
std::optional<int> ReadTimeOfClock(std::string_view text) {
  std::optional<int> afternoon;
  if (text.size() > 3 &&
      (SameWord(text.substr(text.size() - 3), " am") || SameWord(text.substr(text.size() - 3), " pm"))) {
    afternoon = SameWord(text.substr(text.size() - 2), "pm") ? 1 : 0;
    text.remove_suffix(3);
  }
  const std::string padded = text.size() > 1 && text[1] == ':' ? "0" + std::string(text) : std::string(text);
  const std::optional<int> seconds = ReadTime(padded);
  if (!seconds || !afternoon) return seconds;
  const int hour = *seconds / 3600;
  if (hour < 1 || hour > 12) return std::nullopt;
  return *seconds + 3600 * ((hour == 12 ? -12 : 0) + 12 * *afternoon);
}

std::optional<DateTime> DateOf(int wantedYear, int month, int day, int seconds) {
  using namespace std::chrono;
  if (wantedYear < kFirstYear || wantedYear > kLastYear) return std::nullopt;
  const year_month_day date{year(wantedYear), std::chrono::month(static_cast<unsigned>(month)),
                            std::chrono::day(static_cast<unsigned>(day))};
  if (!date.ok()) return std::nullopt;
  const auto days = static_cast<double>((sys_days(date) - sys_days(year(1899) / December / 30)).count());
  const double fraction = seconds / kSecondsOfDay;
  // The time of day counts away from zero, also for days before the first.
  return DateTime{days < 0 ? days - fraction : days + fraction};
}

std::optional<std::uint8_t> HexDigit(char c) {
  if (IsDigit(c)) return static_cast<std::uint8_t>(c - '0');
  if (c >= 'A' && c <= 'F') return static_cast<std::uint8_t>(c - 'A' + 10);
  if (c >= 'a' && c <= 'f') return static_cast<std::uint8_t>(c - 'a' + 10);
  return std::nullopt;
}

}  // namespace

std::optional<Value> ParseNumber(std::string_view text) {
  if (!HasNumberForm(text)) return std::nullopt;
  const bool negative = text.front() == '-';
  if (negative || text.front() == '+') text.remove_prefix(1);
  if (text.find_first_of("eE") == std::string_view::npos) {
    if (const std::optional<Decimal> decimal = ReadDecimal(text, negative)) {
      const std::optional<std::int64_t> whole = ToInteger(*decimal);
      const bool isWhole = text.find('.') == std::string_view::npos && whole.has_value();
      if (isWhole && *whole >= std::numeric_limits<std::int32_t>::min() &&
          *whole <= std::numeric_limits<std::int32_t>::max()) {
        return Value(static_cast<std::int32_t>(*whole));
      }
      return Value(*decimal);
    }
  }
  double value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  // Reject underflow too.
  if (result.ec != std::errc{} || !std::isfinite(value)) return std::nullopt;
  return Value(negative ? -value : value);
}

std::optional<DateTime> ParseDate(std::string_view text) {
  const std::optional<int> year = TakeDigits(text, 4);
  if (!year || !Take(text, '-')) return std::nullopt;
  const std::optional<int> month = TakeDigits(text, 2);
  if (!month || !Take(text, '-')) return std::nullopt;
  const std::optional<int> day = TakeDigits(text, 2);
  if (!day) return std::nullopt;
  std::optional<int> seconds = 0;
  if (!text.empty()) {
    if (!Take(text, ' ') && !Take(text, 'T')) return std::nullopt;
    seconds = ReadTime(text);
    if (!seconds) return std::nullopt;
  }
  return DateOf(*year, *month, *day, *seconds);
}

std::optional<DateTime> ParseDateLiteral(std::string_view text) {
  if (const std::optional<DateTime> date = ParseDate(text)) return date;
  if (text.find('/') == std::string_view::npos) {
    const std::optional<int> seconds = ReadTimeOfClock(text);
    if (!seconds) return std::nullopt;
    return DateTime{*seconds / kSecondsOfDay};
  }
  const std::optional<int> month = TakeOneOrTwoDigits(text);
  if (!month || !Take(text, '/')) return std::nullopt;
  const std::optional<int> day = TakeOneOrTwoDigits(text);
  if (!day || !Take(text, '/')) return std::nullopt;
  const std::optional<int> year = TakeDigits(text, 4);
  if (!year) return std::nullopt;
  std::optional<int> seconds = 0;
  if (!text.empty()) {
    if (!Take(text, ' ')) return std::nullopt;
    seconds = ReadTimeOfClock(text);
    if (!seconds) return std::nullopt;
  }
  return DateOf(*year, *month, *day, *seconds);
}

std::optional<Guid> ParseGuid(std::string_view text) {
  if (text.size() == 38 && text.front() == '{' && text.back() == '}') text = text.substr(1, 36);
  if (text.size() != 36) return std::nullopt;
  Guid guid;
  std::size_t at = 0;
  for (std::size_t i = 0; i < guid.bytes.size(); ++i) {
    if (at == 8 || at == 13 || at == 18 || at == 23) {
      if (text[at++] != '-') return std::nullopt;
    }
    const std::optional<std::uint8_t> high = HexDigit(text[at++]);
    const std::optional<std::uint8_t> low = HexDigit(text[at++]);
    if (!high || !low) return std::nullopt;
    guid.bytes[Guid::kAsWritten[i]] = static_cast<std::uint8_t>(*high << 4 | *low);
  }
  return guid;
}

}  // namespace jet::sql
