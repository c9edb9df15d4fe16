#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "HLLeague/League.h"

namespace cli {

/// Text as HTML shows it, also within quotes. Control characters and bytes that are not UTF-8 become visible.
std::string HtmlText(std::string_view text);

/// Shows positions: the short name in a frame, and a colour as well, the same one wherever the position
/// stands.
class PositionBadges {
 public:
  explicit PositionBadges(HLLeague::League& league);

  /// `abbr` is the short name; nothing for none.
  std::string Html(const std::string& abbr) const;

 private:
  std::map<std::string, std::size_t> m_numbers;  ///< of the colours, under the short names
};

/// A whole page, which needs nothing but itself: it prints in landscape, fits phones, and follows the
/// reader's choice of dark or light. The style sheet in HtmlPage.cpp defines its classes.
struct HtmlPage {
  std::string title;                    ///< plain text
  std::string note;                     ///< plain text below the title
  std::string body;                     ///< HTML
  bool isBoard = false;                 ///< as wide as the screen, with letters that grow with it
  std::optional<std::int32_t> refresh;  ///< seconds after which the page is loaded again

  std::string Text() const;
};

/// What pages of boards begin with; other pages do not.
inline constexpr std::string_view kBoardPageBeginning = "<!doctype html>\n<!-- halcyra draft board -->\n";

}  // namespace cli
