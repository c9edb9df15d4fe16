#include "jet/table/UsageMap.h"

#include <algorithm>
#include <array>
#include <string>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/PageLayout.h"
#include "jet/table/PageAllocator.h"

namespace jet {

using namespace format;
using namespace format::usage_map;

namespace {

[[noreturn]] void RaiseDamaged(std::uint32_t pointer, const char* what) {
  throw Error(ErrorNumber::DamagedFile, "The usage map in page " + std::to_string(RowPointerPage(pointer)) +
                                            ", row " + std::to_string(RowPointerSlot(pointer)) +
                                            ", is damaged: " + what + ".");
}

// The map's row, pinned.
struct MapRow {
  PageHandle page;
  std::span<const std::byte> bytes;
  bool isInline = true;

  std::uint32_t First() const { return LoadU32(bytes.data() + kFirstPage); }
  std::span<const std::byte> Bitmap() const { return bytes.subspan(kBitmap); }
  std::uint32_t Capacity() const { return static_cast<std::uint32_t>(8 * (bytes.size() - kBitmap)); }
  std::size_t References() const { return std::min((bytes.size() - kReferences) / 4, kMostReferences); }
  std::uint32_t Reference(std::size_t k) const { return LoadU32(bytes.data() + kReferences + 4 * k); }
};

MapRow ReadRow(Pager& pager, std::uint32_t pointer) {
  MapRow row;
  row.page = pager.Get(RowPointerPage(pointer));
  const DataPageView view(row.page.Bytes(), RowPointerPage(pointer));
  if (view.Owner() != data_page::kOwnerUsageMaps) RaiseDamaged(pointer, "its page holds no usage maps");
  const RowSlot slot = view.Slot(RowPointerSlot(pointer));
  if (slot.flags != data_page::kLive || slot.end - slot.begin <= kBitmap)
    RaiseDamaged(pointer, "its row is missing");
  row.bytes = view.Row(slot);
  const std::uint8_t kind = LoadU8(row.bytes.data());
  if (kind > kByReference) RaiseDamaged(pointer, "its kind is unknown");
  row.isInline = kind == kInline;
  if (row.isInline && row.First() > kMaxPages) RaiseDamaged(pointer, "it begins past the end of any file");
  return row;
}

std::span<const std::byte> MapPageBitmap(const PageHandle& page, std::uint32_t pointer) {
  if (LoadU8(page.Data()) != page_type::kUsageMap) RaiseDamaged(pointer, "a page it refers to holds no map");
  return std::span(page.Bytes()).subspan(kMapPageBitmap);
}

}  // namespace

bool UsageMap::Contains(PageNumber page) const {
  return Next(page) == page;
}

PageNumber UsageMap::Next(PageNumber from) const {
  const MapRow row = ReadRow(*m_pager, m_pointer);
  PageNumber found = kNoPage;
  if (row.isInline) {
    const PageNumber first = row.First();
    const std::uint32_t bit = FindSetBit(row.Bitmap(), from > first ? from - first : 0);
    if (bit != kNoPage) found = first + bit;
  } else {
    for (std::size_t k = from / kPagesPerMapPage; k < row.References() && found == kNoPage; ++k) {
      const PageNumber mapPage = row.Reference(k);
      if (mapPage == 0) continue;
      const auto base = static_cast<PageNumber>(k * kPagesPerMapPage);
      const PageHandle page = m_pager->Get(mapPage);
      const std::uint32_t bit = FindSetBit(MapPageBitmap(page, m_pointer), from > base ? from - base : 0);
      if (bit != kNoPage) found = base + bit;
    }
  }
  if (found != kNoPage && found >= m_pager->PageCount())
    RaiseDamaged(m_pointer, "it lists pages past the end of the file");
  return found;
}

std::vector<PageNumber> UsageMap::Pages() const {
  std::vector<PageNumber> pages;
  for (PageNumber page = Next(0); page != kNoPage; page = Next(page + 1))
    pages.push_back(page);
  return pages;
}

std::vector<PageNumber> UsageMap::MapPages() const {
  const MapRow row = ReadRow(*m_pager, m_pointer);
  std::vector<PageNumber> pages;
  if (row.isInline) return pages;
  for (std::size_t k = 0; k < row.References(); ++k) {
    if (row.Reference(k) != 0) pages.push_back(row.Reference(k));
  }
  return pages;
}

bool UsageMap::AddInline(PageNumber page) {
  const MapRow row = ReadRow(*m_pager, m_pointer);
  PageNumber first = row.First();
  const std::uint32_t lowest = FindSetBit(row.Bitmap(), 0);
  PageNumber newFirst = first;
  if (lowest == kNoPage) {
    if (page < first || page - first >= row.Capacity()) newFirst = page / 8 * 8;
  } else {
    // The map can be moved along while all its pages still fit.
    const PageNumber least = std::min(first + lowest, page);
    const PageNumber most = std::max(first + LastSetBit(row.Bitmap()), page);
    if (page < first || page - first >= row.Capacity()) newFirst = least / 8 * 8;
    if (most - newFirst >= row.Capacity()) return false;
  }
  const MutablePage changed = m_pager->Change(RowPointerPage(m_pointer));
  const auto bytes = DataPage(changed.Bytes(), changed.Number()).MutableRow(RowPointerSlot(m_pointer));
  const auto bitmap = bytes.subspan(kBitmap);
  if (newFirst != first) {
    std::vector<std::byte> moved(bitmap.size());
    for (std::uint32_t bit = lowest; bit != kNoPage; bit = FindSetBit(bitmap, bit + 1)) {
      AssignBit(moved, first + bit - newFirst, true);
    }
    std::ranges::copy(moved, bitmap.begin());
    StoreU32(bytes.data() + kFirstPage, newFirst);
    first = newFirst;
  }
  AssignBit(bitmap, page - first, true);
  return true;
}

void UsageMap::MakeReferences(PageAllocator& allocator) {
  const std::vector<PageNumber> members = Pages();
  {
    const MutablePage changed = m_pager->Change(RowPointerPage(m_pointer));
    const auto bytes = DataPage(changed.Bytes(), changed.Number()).MutableRow(RowPointerSlot(m_pointer));
    std::ranges::fill(bytes, std::byte{0});
    StoreU8(bytes.data(), kByReference);
  }
  for (const PageNumber member : members)
    Add(member, allocator);
}

void UsageMap::Add(PageNumber page, PageAllocator& allocator) {
  if (ReadRow(*m_pager, m_pointer).isInline) {
    if (AddInline(page)) return;
    MakeReferences(allocator);
  }
  const std::size_t k = page / kPagesPerMapPage;
  PageNumber mapPage = 0;
  {
    const MapRow row = ReadRow(*m_pager, m_pointer);
    if (k >= row.References()) RaiseDamaged(m_pointer, "its row is too short for the pages of the file");
    mapPage = row.Reference(k);
  }
  if (mapPage == 0) {
    mapPage = allocator.AllocateMapPage().Number();
    const MutablePage changed = m_pager->Change(RowPointerPage(m_pointer));
    const auto bytes = DataPage(changed.Bytes(), changed.Number()).MutableRow(RowPointerSlot(m_pointer));
    StoreU32(bytes.data() + kReferences + 4 * k, mapPage);
  }
  const MutablePage map = m_pager->Change(mapPage);
  MapPageBitmap(map, m_pointer);
  AssignBit(std::span(map.Bytes()).subspan(kMapPageBitmap), page % kPagesPerMapPage, true);
}

void UsageMap::Remove(PageNumber page) {
  if (!Contains(page)) return;
  const MapRow row = ReadRow(*m_pager, m_pointer);
  if (row.isInline) {
    const std::uint32_t bit = page - row.First();
    const MutablePage changed = m_pager->Change(RowPointerPage(m_pointer));
    const auto bytes = DataPage(changed.Bytes(), changed.Number()).MutableRow(RowPointerSlot(m_pointer));
    AssignBit(bytes.subspan(kBitmap), bit, false);
    return;
  }
  const MutablePage map = m_pager->Change(row.Reference(page / kPagesPerMapPage));
  AssignBit(std::span(map.Bytes()).subspan(kMapPageBitmap), page % kPagesPerMapPage, false);
}

std::uint32_t UsageMap::Create(MutablePage& mapPage) {
  const std::array<std::byte, kNewRowBytes> row{};
  DataPage page(mapPage.Bytes(), mapPage.Number());
  if (!page.Fits(row.size())) {
    throw Error(ErrorNumber::InvalidDefinition,
                "The table has too many indexes and long columns for its page of usage maps.");
  }
  return MakeRowPointer(mapPage.Number(), page.Insert(row));
}

}  // namespace jet
