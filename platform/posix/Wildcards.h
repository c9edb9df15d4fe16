#pragma once

#include <string_view>

namespace HLDataSrvc {

/// Whether a whole file name matches a pattern, in which `*` stands for any run of characters and `?` for one
/// character. Both are UTF-8; case matters.
bool MatchesWildcards(std::string_view name, std::string_view pattern);

}  // namespace HLDataSrvc
