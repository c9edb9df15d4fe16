#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace HLLeague {

/// The number that is the whole of a text, if it is one of 32 bits.
std::optional<std::int32_t> WholeNumber(std::string_view text);

/// "1 winning", "2 winnings".
std::string CountOf(std::int64_t count, const std::string& what);

/// Raises Failure for a number outside a range; `what` it is of: "The number of managers".
void RequireInRange(const std::string& what, std::int32_t number, std::int32_t least, std::int32_t most);

}  // namespace HLLeague
