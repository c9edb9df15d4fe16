#pragma once

#include <cstdint>
#include <string_view>

/// Values from the text of a column, and 32-bit arithmetic that does not overflow silently.
///
/// Numbers are read in two ways. The lenient one takes the leading number of the text and ignores the rest;
/// the strict one wants the whole text to be a number. Which of them a loader uses decides what a Null
/// column, whose text is empty, does to it. A number is digits with an optional sign, point and exponent;
/// blanks around it do not count. All functions raise HLIData::Error.
namespace HLDataSrvc::Conversions {

/// Lenient: the leading number of the text, rounded to an integer, halves to even; 0 when it begins with
/// none. Raises Overflow outside 32 bits.
std::int32_t LeadingInt32(std::string_view text);

/// Strict: the number that is the whole text, rounded to an integer, halves to even. Raises TypeMismatch for
/// an empty text and for anything that is not a number, Overflow outside 32 bits.
std::int32_t WholeInt32(std::string_view text);

/// Strict: "True" or "False" in any case, or a number, of which 0 alone is false. Raises TypeMismatch for
/// anything else, the empty text included.
bool WholeBoolean(std::string_view text);

/// `a + b`, `a - b`, `a * b`. Raise Overflow outside 32 bits.
std::int32_t CheckedAdd(std::int32_t a, std::int32_t b);
std::int32_t CheckedSubtract(std::int32_t a, std::int32_t b);
std::int32_t CheckedMultiply(std::int32_t a, std::int32_t b);

}  // namespace HLDataSrvc::Conversions
