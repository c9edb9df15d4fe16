#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "jet/file/Pager.h"
#include "jet/table/PageAllocator.h"
#include "jet/table/RowId.h"
#include "jet/table/UsageMap.h"

namespace jet {

/// The data pages of one owner, a table or a long-value column, and the room in them: where a new row goes,
/// and what becomes of a page that rows were taken from.
///
/// Changes happen inside a change unit.
class RowPages {
 public:
  /// `ownedMap` and `freeMap` are row pointers of the owner's maps; `owner` is what its pages say in their
  /// owner field.
  RowPages(Pager& pager, PageAllocator& allocator, std::uint32_t ownedMap, std::uint32_t freeMap,
           std::uint32_t owner);

  const UsageMap& Owned() const { return m_owned; }
  std::uint32_t Owner() const { return m_owner; }

  /// Puts a row on a page with room, or on a new one.
  RowId Insert(std::span<const std::byte> row, std::uint16_t flags);
  /// Where Insert would put a row of `size` bytes without any page but that of the row before changing; none
  /// when others change too.
  std::optional<RowId> LikelyPlace(std::size_t size) const;
  /// Puts a row at such a place. Raises DamagedFile, and then nothing is changed.
  void Put(RowId place, std::span<const std::byte> row, std::uint16_t flags);
  /// A new page that no other row will be put on.
  MutablePage NewPage();
  /// Removes the bytes of a slot.
  void Remove(RowId row);
  /// A row of the page became shorter or went: gives the page back when no row is left on it, or lists it as
  /// having room.
  void RoomMade(PageNumber page);

 private:
  std::optional<RowId> PlaceOn(PageNumber page, std::size_t size) const;

  Pager* m_pager;
  PageAllocator* m_allocator;
  UsageMap m_owned;
  UsageMap m_free;
  std::uint32_t m_owner;
  PageNumber m_lastUsed = 0;  ///< page that took the last row; a hint, checked before use
};

}  // namespace jet
