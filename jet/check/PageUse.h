#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "jet/check/Findings.h"
#include "jet/file/Pager.h"

namespace jet::check {

/// Which structure each page of the file belongs to, held against the map of free pages.
class PageUse {
 public:
  /// Reads the map of free pages, and from every page in use whose rows it holds.
  PageUse(Pager& pager, Findings& findings);

  PageNumber Count() const { return static_cast<PageNumber>(m_inUse.size()); }
  bool IsInUse(PageNumber page) const { return page < m_inUse.size() && m_inUse[page]; }

  /// Notes that `page` is part of `owner`. False, and a finding, when the page is part of another structure
  /// or does not exist; false also when it is noted already.
  bool Claim(PageNumber page, const std::string& owner);
  bool IsOwnedBy(PageNumber page, const std::string& owner) const;

  /// Members of the usage map at a row pointer. Notes that row and the map's own pages as used by `owner`.
  /// Raises DamagedFile.
  std::vector<PageNumber> ReadMap(std::uint32_t pointer, const std::string& owner);

  /// Pages in use that say that their rows belong to `owner`, ascending.
  const std::vector<PageNumber>& DataPagesOf(std::uint32_t owner) const;

  /// Last of all: free space figures of the pages noted, and whether the map of free pages agrees.
  void Finish();

 private:
  void ReadGlobalMap();
  void ReadOwners();
  void CheckFreeSpace(PageNumber page);

  Pager* m_pager;
  Findings* m_findings;
  std::vector<bool> m_inUse;
  std::vector<std::uint32_t> m_owner;  // index in m_names + 1; 0: none
  std::vector<std::string> m_names;
  std::unordered_map<std::string, std::uint32_t> m_ids;
  std::unordered_map<std::uint32_t, std::string> m_mapRows;  // row pointer -> owner
  std::unordered_map<std::uint32_t, std::vector<PageNumber>> m_dataPages;
};

/// Page numbers as a short text: "3, 5-9".
std::string Ranges(const std::vector<PageNumber>& ascending);

/// Members of the first list that the second does not have; both ascending.
std::vector<PageNumber> Without(const std::vector<PageNumber>& pages, const std::vector<PageNumber>& others);

}  // namespace jet::check
