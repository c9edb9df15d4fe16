#include "cli/output/ValueText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdlib>

namespace cli {
namespace {

constexpr int kLeastPlainExponent = -4;
constexpr int kMostPlainExponent = 15;

/// The shortest text that reads as the same number; with an exponent only where that is outside the bounds.
template <typename Number>
std::string NumberText(Number number) {
  std::array<char, 64> buffer{};
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, std::chars_format::scientific);
  std::string text(buffer.data(), end.ptr);
  if (!std::isfinite(number)) return text;
  const std::size_t mark = text.find('e');
  const int exponent = std::atoi(text.c_str() + mark + 1);
  if (exponent < kLeastPlainExponent || exponent > kMostPlainExponent) return text;
  text.resize(mark);
  const std::string sign = text.front() == '-' ? "-" : "";
  std::string digits = text.substr(sign.size());
  std::erase(digits, '.');
  if (exponent < 0) return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) return sign + digits + std::string(whole - digits.size(), '0');
  return sign + digits.substr(0, whole) + "." + digits.substr(whole);
}

}  // namespace

std::string ValueText(const jet::Value& value) {
  if (const bool* flag = value.As<bool>()) return *flag ? "-1" : "0";
  if (const auto* number = value.As<float>()) return NumberText(*number);
  if (const auto* number = value.As<double>()) return NumberText(*number);
  return value.ToText();
}

}  // namespace cli
