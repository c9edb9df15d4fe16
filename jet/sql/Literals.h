#pragma once

#include <optional>
#include <string_view>

#include "jet/Value.h"

/// Values written as text, the same on every machine.
namespace jet::sql {

/// The number that the whole text says: digits, a decimal point, a sign before and an exponent behind, no
/// blanks. Whole numbers of 32 bits, then decimals of up to 28 digits, then doubles. None when it is not a
/// number, or past the range of doubles.
std::optional<Value> ParseNumber(std::string_view text);

/// The date that the whole text says: "2024-09-05", "2024-09-05 19:30", "2024-09-05 19:30:15", also with a T
/// between; years 100 to 9999. None when there is no such day or time.
std::optional<DateTime> ParseDate(std::string_view text);

/// The same of what stands between # in an expression: also "1/31/2024", the month first, "1/31/2024 7:30:15
/// PM" and a time alone.
std::optional<DateTime> ParseDateLiteral(std::string_view text);

/// The GUID that the whole text says, with or without braces.
std::optional<Guid> ParseGuid(std::string_view text);

}  // namespace jet::sql
