#include "cli/Json.h"

#include <cmath>

#include "cli/ValueText.h"

namespace cli {

std::string JsonText(const jet::Value& value) {
  if (value.IsNull()) return "null";
  if (const bool* flag = value.As<bool>()) return *flag ? "true" : "false";
  const double* real = value.As<double>();
  const float* single = value.As<float>();
  const bool finite =
      (real == nullptr || std::isfinite(*real)) && (single == nullptr || std::isfinite(*single));
  const bool isNumber = real != nullptr || single != nullptr || value.As<std::int32_t>() != nullptr ||
                        value.As<jet::Currency>() != nullptr || value.As<jet::Decimal>() != nullptr;
  const std::string text = ValueText(value);
  return isNumber && finite ? text : JsonText(std::string_view(text));
}

std::string JsonText(std::string_view text) {
  return Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string JsonText(const Json& document) {
  return document.dump(2, ' ', false, Json::error_handler_t::replace);
}

}  // namespace cli
