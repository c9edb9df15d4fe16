#include "platform/posix/Wildcards.h"

#include <cstddef>

namespace HLDataSrvc {
namespace {

// Bytes of the UTF-8 character that begins at `at`.
std::size_t CharacterLength(std::string_view text, std::size_t at) {
  std::size_t next = at + 1;
  while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0) == 0x80)
    ++next;
  return next - at;
}

}  // namespace

bool MatchesWildcards(std::string_view name, std::string_view pattern) {
  std::size_t at = 0;
  std::size_t in = 0;
  // The last star seen, and how far its run reaches: on a mismatch the run takes one more character. Going
  // back further than the last star never helps.
  std::size_t star = pattern.npos;
  std::size_t runEnd = 0;
  while (at < name.size()) {
    if (in < pattern.size() && pattern[in] == '*') {
      star = in++;
      runEnd = at;
    } else if (in < pattern.size() && pattern[in] == '?') {
      at += CharacterLength(name, at);
      ++in;
    } else if (in < pattern.size() && pattern[in] == name[at]) {
      ++at;
      ++in;
    } else if (star != pattern.npos) {
      runEnd += CharacterLength(name, runEnd);
      at = runEnd;
      in = star + 1;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', in) == pattern.npos;
}

}  // namespace HLDataSrvc
