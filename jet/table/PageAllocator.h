#pragma once

#include <cstdint>

#include "jet/file/Pager.h"

namespace jet {

/// Gives out and takes back pages, by the global usage map (row 0 of page 1: a set bit is a free page, or one
/// past the end of the file). Pages of the file that the map has no bit for are in use.
///
/// All changes happen inside a change unit. Raises FileTooLarge, and DamagedFile when the map cannot be read.
class PageAllocator {
 public:
  explicit PageAllocator(Pager& pager) : m_pager(&pager) {}

  /// A page of zeros that is marked in use: the lowest free one of the file, or a new one at its end.
  MutablePage Allocate();
  /// The same, made an empty page of a usage map kept by reference.
  MutablePage AllocateMapPage();
  /// Marks a page free; its contents stay.
  void Free(PageNumber page);
  bool IsFree(PageNumber page) const;

  /// Raises DamagedFile when the map has pages past the end of the file in use: the file was cut off. A map
  /// that cannot be read is an error only if the file ends inside a page.
  void CheckFileIsWhole() const;

 private:
  PageNumber FindFree() const;
  void Mark(PageNumber page, bool free);
  void Cover(PageNumber page);
  bool WidenRow(PageNumber page);
  void MakeReferences();

  Pager* m_pager;
  PageNumber m_searchFrom = 0;  // where the search for a free page starts; a hint
};

}  // namespace jet
