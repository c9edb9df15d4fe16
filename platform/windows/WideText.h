#pragma once

#include <string>
#include <string_view>

namespace HLDataSrvc {

/// Text of the component (UTF-8) in the form that the system takes (UTF-16). Bytes that are not UTF-8 become
/// U+FFFD.
std::wstring ToWide(std::string_view text);

/// Text of the system (UTF-16) in the component's form (UTF-8). A half of a pair without the other becomes
/// U+FFFD.
std::string ToUtf8(std::wstring_view text);

}  // namespace HLDataSrvc
