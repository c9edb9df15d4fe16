#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace HLLeague {

/// How many single mistakes of typing (a letter left out, added, changed, or two neighbours swapped) lie
/// between two words; ASCII letters in any case are the same. This is the optimal string alignment distance.
std::size_t TypingDistance(std::string_view a, std::string_view b);

/// The candidate that `word` was most likely meant to be: the nearest by typing distance, the first of
/// several. Empty when none is near, that is, when more than half of the longer word would have to change.
std::string NearestOf(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace HLLeague
