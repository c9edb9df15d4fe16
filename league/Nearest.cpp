#include "league/Nearest.h"

#include <algorithm>

namespace HLLeague {
namespace {

char Lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::size_t TypingDistance(std::string_view a, std::string_view b) {
  // Rows of the table of distances between prefixes of a and of b; a swap looks back two rows.
  std::vector<std::size_t> beforeLast(b.size() + 1);
  std::vector<std::size_t> last(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j)
    row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeLast.swap(last);
    last.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const bool same = Lower(a[i - 1]) == Lower(b[j - 1]);
      row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (same ? 0 : 1)});
      const bool swapped =
          i > 1 && j > 1 && Lower(a[i - 1]) == Lower(b[j - 2]) && Lower(a[i - 2]) == Lower(b[j - 1]);
      if (swapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
  }
  return row[b.size()];
}

std::string NearestOf(std::string_view word, const std::vector<std::string>& candidates) {
  std::string nearest;
  std::size_t best = 0;
  for (const std::string& candidate : candidates) {
    const std::size_t distance = TypingDistance(word, candidate);
    if (distance > std::max(word.size(), candidate.size()) / 2) continue;
    if (nearest.empty() || distance < best) {
      nearest = candidate;
      best = distance;
    }
  }
  return nearest;
}

}  // namespace HLLeague
