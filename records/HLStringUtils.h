#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Helpers for texts that users type.
namespace HLDataSrvc::HLStringUtils {

/// The words of a search text, separated by blanks, commas and semicolons; nothing in them is escaped.
///
/// Splits by one separator after the other. What is empty after that is a word too, deliberately, and only
/// moves behind those that are not: "joe, smith" has the words "joe", "smith" and "". Never empty: an empty
/// text is one empty word.
std::vector<std::string> SplitWords(std::string_view text);

}  // namespace HLDataSrvc::HLStringUtils
