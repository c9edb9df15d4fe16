#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "jet/Value.h"
#include "jet/check/Findings.h"
#include "jet/check/PageUse.h"
#include "jet/file/Pager.h"

namespace jet::check {

/// Pages of long values: every piece on them is used by one value, and every value finds its pieces.
class LongValueUse {
 public:
  LongValueUse(Pager& pager, PageUse& pages, Findings& findings)
      : m_pager(&pager), m_pages(&pages), m_findings(&findings) {}

  /// Notes the pages of a column. `column` is how messages name it.
  void AddPages(const std::vector<PageNumber>& pages, const std::string& column);

  /// The whole value that a row's `stored` bytes stand for; notes its pieces. Raises DamagedFile.
  Bytes Follow(std::span<const std::byte> stored, const std::string& column);

  /// After all rows: pieces that no value uses.
  void Finish();

 private:
  std::span<const std::byte> Piece(const PageHandle& page, std::uint32_t pointer, const std::string& column);

  Pager* m_pager;
  PageUse* m_pages;
  Findings* m_findings;
  std::vector<std::pair<PageNumber, std::string>> m_owned;
  std::unordered_set<std::uint32_t> m_used;  // row pointers
};

}  // namespace jet::check
