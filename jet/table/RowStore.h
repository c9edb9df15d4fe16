#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>

#include "jet/file/Pager.h"
#include "jet/format/DataPage.h"
#include "jet/table/RowId.h"
#include "jet/table/RowPages.h"

namespace jet {

/// A row's bytes, pinned in the page cache for as long as this lives.
class RowRef {
 public:
  RowRef() = default;
  RowRef(PageHandle page, std::span<const std::byte> bytes) : m_page(std::move(page)), m_bytes(bytes) {}
  std::span<const std::byte> Bytes() const { return m_bytes; }

 private:
  PageHandle m_page;
  std::span<const std::byte> m_bytes;
};

/// The rows of one table as bytes on its pages. A row that outgrows its page moves to another and leaves a
/// pointer, so that its RowId stays.
///
/// Changes happen inside a change unit. Raises DamagedFile.
class RowStore {
 public:
  RowStore(Pager& pager, PageAllocator& allocator, std::uint32_t ownedMap, std::uint32_t freeMap,
           PageNumber definitionPage);

  const UsageMap& OwnedPages() const { return m_pages.Owned(); }

  /// The bytes of the row at `id`; none when there is no live row of this table there.
  std::optional<RowRef> Fetch(RowId id) const;
  /// The bytes of a live or moved slot of `page`, which belongs to this table.
  RowRef Resolve(const PageHandle& page, const format::DataPageView& view, const format::RowSlot& slot) const;

  RowId Insert(std::span<const std::byte> row) { return m_pages.Insert(row, format::data_page::kLive); }
  /// See RowPages.
  std::optional<RowId> LikelyPlace(std::size_t size) const { return m_pages.LikelyPlace(size); }
  void Put(RowId place, std::span<const std::byte> row) { m_pages.Put(place, row, format::data_page::kLive); }
  void Replace(RowId id, std::span<const std::byte> row);
  void Remove(RowId id);

 private:
  RowId Target(const format::DataPageView& view, const format::RowSlot& slot) const;

  Pager* m_pager;
  RowPages m_pages;
};

}  // namespace jet
