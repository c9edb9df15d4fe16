#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "jet/file/Pager.h"
#include "jet/format/UsageMapRow.h"

namespace jet {

class PageAllocator;

/// A set of pages kept in the file: those that a table owns, those with room, those of an index or a long
/// value column. (The global map of free pages is the PageAllocator's.)
///
/// Nothing is kept in memory: every call works on the pages, so that undoing a change unit undoes the map.
/// Raises DamagedFile when the map contradicts the format.
class UsageMap {
 public:
  /// `pointer` is the row pointer of the map's row.
  UsageMap(Pager& pager, std::uint32_t pointer) : m_pager(&pager), m_pointer(pointer) {}

  bool Contains(PageNumber page) const;
  /// The smallest member that is not below `from`; format::kNoPage when there is none.
  PageNumber Next(PageNumber from) const;
  /// All members, ascending.
  std::vector<PageNumber> Pages() const;
  /// Pages that hold the bitmaps of a map kept by reference.
  std::vector<PageNumber> MapPages() const;

  /// Adds a page; a page that is a member stays one. Inside a change unit. `allocator` gives the pages that
  /// the map itself may come to need.
  void Add(PageNumber page, PageAllocator& allocator);
  /// Removes a page; one that is not a member is no error.
  void Remove(PageNumber page);

  /// Adds a map row for no pages to a page of maps; its row pointer.
  static std::uint32_t Create(MutablePage& mapPage);

 private:
  bool AddInline(PageNumber page);
  void MakeReferences(PageAllocator& allocator);

  Pager* m_pager;
  std::uint32_t m_pointer;
};

}  // namespace jet
