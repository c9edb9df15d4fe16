#include "cli/output/ValueText.h"

#include <fmt/format.h>

namespace cli {

std::string ValueText(const jet::Value& value) {
  if (const bool* flag = value.As<bool>()) return *flag ? "-1" : "0";
  if (const auto* number = value.As<float>()) return fmt::format("{}", *number);
  if (const auto* number = value.As<double>()) return fmt::format("{}", *number);
  return value.ToText();
}

}  // namespace cli
