#include "records/Conversions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>
#include <system_error>

#include "HLIData/Error.h"

namespace HLDataSrvc::Conversions {
namespace {

using HLIData::Error;
using HLIData::ErrorNumber;

struct LeadingNumber {
  double value = 0;
  std::size_t length = 0;  // characters it takes up, blanks before it included; 0: there is none
};

std::string Quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

bool IsBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

LeadingNumber ReadLeadingNumber(std::string_view text) {
  const char* const end = text.data() + text.size();
  const char* at = std::find_if_not(text.data(), end, IsBlank);
  bool negative = false;
  if (at != end && (*at == '+' || *at == '-')) negative = *at++ == '-';
  // from_chars would take a second sign, "inf" and "nan".
  const bool isNumber = at != end && (IsDigit(*at) || (*at == '.' && at + 1 != end && IsDigit(at[1])));
  if (!isNumber) return {};

  LeadingNumber number;
  const auto [stop, error] = std::from_chars(at, end, number.value);
  if (error == std::errc::result_out_of_range) {
    // It says the same of what is too large and what is too small to hold.
    const std::string_view digits(at, static_cast<std::size_t>(stop - at));
    const std::size_t exponent = digits.find_first_of("eE");
    const bool tooSmall =
        exponent == digits.npos ? digits[digits.find_first_not_of('0')] == '.' : digits[exponent + 1] == '-';
    number.value = tooSmall ? 0 : std::numeric_limits<double>::infinity();
  }
  if (negative) number.value = -number.value;
  number.length = static_cast<std::size_t>(stop - text.data());
  return number;
}

double WholeNumber(std::string_view text) {
  const LeadingNumber number = ReadLeadingNumber(text);
  if (number.length == 0 ||
      !std::all_of(text.begin() + static_cast<std::ptrdiff_t>(number.length), text.end(), IsBlank)) {
    throw Error(ErrorNumber::TypeMismatch, Quoted(text) + " is not a number.");
  }
  return number.value;
}

std::int32_t RoundedToEven(double value, std::string_view text) {
  const double rounded = std::nearbyint(value);  // the default rounding mode: halves to even
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
        rounded <= std::numeric_limits<std::int32_t>::max())) {
    throw Error(ErrorNumber::Overflow, "The number " + Quoted(text) + " does not fit in 32 bits.");
  }
  return static_cast<std::int32_t>(rounded);
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lowerCase) {
  return std::equal(text.begin(), text.end(), lowerCase.begin(), lowerCase.end(),
                    [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a - 'A' + 'a' : a) == b; });
}

std::int32_t Checked(std::int64_t result, std::int32_t a, char sign, std::int32_t b) {
  if (result != static_cast<std::int32_t>(result)) {
    throw Error(ErrorNumber::Overflow, "The result of " + std::to_string(a) + " " + sign + " " +
                                           std::to_string(b) + " does not fit in 32 bits.");
  }
  return static_cast<std::int32_t>(result);
}

}  // namespace

std::int32_t LeadingInt32(std::string_view text) {
  return RoundedToEven(ReadLeadingNumber(text).value, text);
}

std::int32_t WholeInt32(std::string_view text) {
  return RoundedToEven(WholeNumber(text), text);
}

bool WholeBoolean(std::string_view text) {
  if (EqualsIgnoringCase(text, "true")) return true;
  if (EqualsIgnoringCase(text, "false")) return false;
  if (ReadLeadingNumber(text).length == 0) {
    throw Error(ErrorNumber::TypeMismatch, Quoted(text) + " is neither true nor false.");
  }
  return WholeNumber(text) != 0;
}

std::int32_t CheckedAdd(std::int32_t a, std::int32_t b) {
  return Checked(std::int64_t{a} + b, a, '+', b);
}

std::int32_t CheckedSubtract(std::int32_t a, std::int32_t b) {
  return Checked(std::int64_t{a} - b, a, '-', b);
}

std::int32_t CheckedMultiply(std::int32_t a, std::int32_t b) {
  return Checked(std::int64_t{a} * b, a, '*', b);
}

}  // namespace HLDataSrvc::Conversions
