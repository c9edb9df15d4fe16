#include "league/Numbers.h"

#include <charconv>

#include "HLLeague/Failure.h"

namespace HLLeague {

std::optional<std::int32_t> WholeNumber(std::string_view text) {
  std::int32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

std::string CountOf(std::int64_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

void RequireInRange(const std::string& what, std::int32_t number, std::int32_t least, std::int32_t most) {
  if (number >= least && number <= most) return;
  throw Failure(FailureKind::Refused, what + " must be from " + std::to_string(least) + " to " +
                                          std::to_string(most) + ", not " + std::to_string(number) + ".");
}

}  // namespace HLLeague
