#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace jet::sql {

/// A pattern of the `like` operator, made ready once and matched against many texts.
///
/// `*` any run of characters, `?` one character, `#` one digit, `[abc-x]` one of a set, `[!abc-x]` one
/// outside it; anything else stands for itself. Case does not matter, accents do, and the whole text must
/// match. A hyphen at either end of a set stands for itself; `[]` matches no character at all, and `]`
/// outside a set itself. Matching takes at most length of the pattern times length of the text.
class LikePattern {
 public:
  /// Raises BadPattern for a set that is never closed, or a range that runs backwards.
  explicit LikePattern(std::string_view pattern);

  bool Matches(std::string_view text) const;

  /// The ASCII characters, letters small, that every text that matches begins with in any case.
  std::string AsciiPrefix() const;
  /// Whether every text that begins so matches.
  bool IsAsciiPrefix() const;

 private:
  struct Range {
    char32_t first;
    char32_t last;
  };
  struct Element {
    enum class Kind { Character, AnyRun, AnyCharacter, Digit, Set };
    Kind kind;
    char32_t character = 0;  ///< folded
    bool negated = false;
    std::vector<Range> ranges;  ///< folded
  };

  std::size_t AddSet(std::string_view pattern, std::size_t at);
  static bool MatchesOne(const Element& element, char32_t folded);

  std::vector<Element> m_elements;
};

}  // namespace jet::sql
