#include "jet/sql/LikePattern.h"

#include <algorithm>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/format/TextCodec.h"

namespace jet::sql {
namespace {

char32_t NextFolded(std::string_view text, std::size_t& at) {
  const auto byte = static_cast<unsigned char>(text[at]);
  if (byte >= 0x80) return FoldCase(NextCodePoint(text, at));
  ++at;
  return byte >= 'A' && byte <= 'Z' ? char32_t{byte} + 32 : char32_t{byte};
}

[[noreturn]] void RaiseBadPattern(std::string_view pattern, const char* why) {
  throw Error(ErrorNumber::BadPattern,
              "The like pattern '" + std::string(pattern) + "' is malformed: " + why + ".");
}

}  // namespace

LikePattern::LikePattern(std::string_view pattern) {
  using enum Element::Kind;
  for (std::size_t at = 0; at < pattern.size();) {
    switch (pattern[at]) {
      case '*':
        // Collapse consecutive '*'.
        if (m_elements.empty() || m_elements.back().kind != AnyRun)
          m_elements.push_back({AnyRun, 0, false, {}});
        ++at;
        break;
      case '?':
        m_elements.push_back({AnyCharacter, 0, false, {}});
        ++at;
        break;
      case '#':
        m_elements.push_back({Digit, 0, false, {}});
        ++at;
        break;
      case '[':
        at = AddSet(pattern, at + 1);
        break;
      default:
        m_elements.push_back({Character, NextFolded(pattern, at), false, {}});
    }
  }
}

// Adds the set whose inside begins at `at`; where the pattern continues after it.
std::size_t LikePattern::AddSet(std::string_view pattern, std::size_t at) {
  const std::size_t close = pattern.find(']', at);
  if (close == std::string_view::npos) RaiseBadPattern(pattern, "a bracket is never closed");
  std::string_view inside = pattern.substr(at, close - at);
  if (inside.empty()) return close + 1;
  if (inside == "!") {
    m_elements.push_back({Element::Kind::Character, U'!', false, {}});
    return close + 1;
  }
  Element set{Element::Kind::Set, 0, inside.front() == '!', {}};
  if (set.negated) inside.remove_prefix(1);
  for (std::size_t i = 0; i < inside.size();) {
    const char32_t first = NextFolded(inside, i);
    char32_t last = first;
    if (i + 1 < inside.size() && inside[i] == '-') {
      ++i;
      last = NextFolded(inside, i);
    }
    if (last < first) RaiseBadPattern(pattern, "a range runs backwards");
    set.ranges.push_back({first, last});
  }
  m_elements.push_back(std::move(set));
  return close + 1;
}

bool LikePattern::MatchesOne(const Element& element, char32_t folded) {
  switch (element.kind) {
    case Element::Kind::Character:
      return folded == element.character;
    case Element::Kind::Digit:
      return folded >= U'0' && folded <= U'9';
    case Element::Kind::Set:
      return element.negated !=
             std::any_of(element.ranges.begin(), element.ranges.end(),
                         [folded](Range range) { return folded >= range.first && folded <= range.last; });
    default:
      return true;
  }
}

std::string LikePattern::AsciiPrefix() const {
  std::string prefix;
  for (const Element& element : m_elements) {
    if (element.kind != Element::Kind::Character || element.character >= 0x80) break;
    prefix += static_cast<char>(element.character);
  }
  return prefix;
}

bool LikePattern::IsAsciiPrefix() const {
  return !m_elements.empty() && m_elements.back().kind == Element::Kind::AnyRun &&
         AsciiPrefix().size() + 1 == m_elements.size();
}

bool LikePattern::Matches(std::string_view text) const {
  // Only the last `*` met is ever tried again: a longer run for an earlier one finds nothing that this
  // misses.
  constexpr auto kNone = static_cast<std::size_t>(-1);
  std::size_t element = 0;
  std::size_t at = 0;
  std::size_t retryElement = kNone;
  std::size_t retryAt = 0;
  while (at < text.size()) {
    if (element < m_elements.size() && m_elements[element].kind == Element::Kind::AnyRun) {
      if (++element == m_elements.size()) return true;
      retryElement = element;
      retryAt = at;
      continue;
    }
    std::size_t next = at;
    const char32_t folded = NextFolded(text, next);
    if (element < m_elements.size() && MatchesOne(m_elements[element], folded)) {
      ++element;
      at = next;
    } else if (retryElement != kNone) {
      NextFolded(text, retryAt);
      at = retryAt;
      element = retryElement;
    } else {
      return false;
    }
  }
  while (element < m_elements.size() && m_elements[element].kind == Element::Kind::AnyRun)
    ++element;
  return element == m_elements.size();
}

}  // namespace jet::sql
