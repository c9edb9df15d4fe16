#include "jet/table/PageAllocator.h"

#include <algorithm>
#include <string>
#include <vector>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/PageLayout.h"
#include "jet/format/UsageMapRow.h"

namespace jet {

using namespace format;
using namespace format::usage_map;

namespace {

constexpr PageNumber kGlobalMapPage = 1;
constexpr std::size_t kGlobalMapSlot = 0;

[[noreturn]] void RaiseDamaged(const Pager& pager, const char* what) {
  throw Error(ErrorNumber::DamagedFile,
              "The file '" + pager.FileName() + "' is damaged: its map of free pages " + what + ".");
}

std::span<const std::byte> MapPageBitmap(const Pager& pager, const PageHandle& page) {
  if (LoadU8(page.Data()) != page_type::kUsageMap) RaiseDamaged(pager, "refers to a page that holds no map");
  return std::span(page.Bytes()).subspan(kMapPageBitmap);
}

/// The global map as its row holds it, pinned.
struct GlobalMap {
  PageHandle page;
  std::span<const std::byte> row;
  bool isInline = true;
  std::uint32_t first = 0;

  std::span<const std::byte> Bitmap() const { return row.subspan(kBitmap); }
  /// One past the last page that an inline map has a bit for.
  std::uint64_t End() const { return std::uint64_t{first} + 8 * Bitmap().size(); }
  std::size_t References() const { return std::min((row.size() - kReferences) / 4, kMostReferences); }
  PageNumber Reference(std::size_t k) const { return LoadU32(row.data() + kReferences + 4 * k); }
  /// The map page with the bit of `wanted`; 0 when there is none.
  PageNumber MapPageOf(PageNumber wanted) const {
    const std::size_t k = wanted / kPagesPerMapPage;
    return k < References() ? Reference(k) : 0;
  }
  /// Whether the map has a bit for `wanted`.
  bool Covers(PageNumber wanted) const {
    return isInline ? wanted >= first && wanted < End() : MapPageOf(wanted) != 0;
  }
  bool IsFree(Pager& pager, PageNumber wanted) const {
    if (!Covers(wanted)) return false;
    if (isInline) return TestBit(Bitmap(), wanted - first);
    const PageHandle handle = pager.Get(MapPageOf(wanted));
    return TestBit(MapPageBitmap(pager, handle), wanted % kPagesPerMapPage);
  }
};

GlobalMap ReadMap(Pager& pager) {
  GlobalMap map;
  map.page = pager.Get(kGlobalMapPage);
  const DataPageView view(map.page.Bytes(), kGlobalMapPage);
  if (view.Owner() != data_page::kOwnerGlobalMap) RaiseDamaged(pager, "is missing");
  map.row = view.Row(kGlobalMapSlot);
  if (map.row.size() < kBitmap || LoadU8(map.row.data()) > kByReference)
    RaiseDamaged(pager, "cannot be read");
  map.isInline = LoadU8(map.row.data()) == kInline;
  if (map.isInline) map.first = LoadU32(map.row.data() + kFirstPage);
  return map;
}

std::span<std::byte> MutableMapRow(const MutablePage& page) {
  return DataPage(page.Bytes(), page.Number()).MutableRow(kGlobalMapSlot);
}

/// Appends a page of the map, for the pages from `first` on: those past the end of the file are free, and
/// those that `old` has free.
MutablePage AppendMapPage(Pager& pager, PageNumber first, const GlobalMap& old) {
  const PageNumber pageCount = pager.PageCount();
  MutablePage mapPage = pager.Append();
  StoreU8(mapPage.Data(), page_type::kUsageMap);
  StoreU8(mapPage.Data() + 1, page_type::kSecondByte);
  const auto bitmap = std::span(mapPage.Bytes()).subspan(kMapPageBitmap);
  for (std::uint32_t bit = 0; bit < kPagesPerMapPage; ++bit) {
    const PageNumber page = first + bit;
    if (page >= pageCount || old.IsFree(pager, page)) AssignBit(bitmap, bit, true);
  }
  return mapPage;
}

}  // namespace

PageNumber PageAllocator::FindFree() const {
  const GlobalMap map = ReadMap(*m_pager);
  PageNumber found = kNoPage;
  if (map.isInline) {
    const std::uint32_t bit =
        FindSetBit(map.Bitmap(), m_searchFrom > map.first ? m_searchFrom - map.first : 0);
    if (bit != kNoPage && std::uint64_t{map.first} + bit < m_pager->PageCount()) found = map.first + bit;
  } else {
    for (std::size_t k = m_searchFrom / kPagesPerMapPage; k < map.References() && found == kNoPage; ++k) {
      if (map.Reference(k) == 0) continue;
      const auto base = static_cast<PageNumber>(k * kPagesPerMapPage);
      const PageHandle page = m_pager->Get(map.Reference(k));
      const std::uint32_t bit =
          FindSetBit(MapPageBitmap(*m_pager, page), m_searchFrom > base ? m_searchFrom - base : 0);
      if (bit != kNoPage) found = base + bit;
    }
  }
  if (found >= m_pager->PageCount()) return kNoPage;
  if (found <= system_page::kRelationships) RaiseDamaged(*m_pager, "gives away a page of the system tables");
  return found;
}

bool PageAllocator::IsFree(PageNumber page) const {
  return ReadMap(*m_pager).IsFree(*m_pager, page);
}

void PageAllocator::CheckFileIsWhole() const {
  const PageNumber pageCount = m_pager->PageCount();
  const auto raiseCutOff = [&] {
    throw Error(ErrorNumber::DamagedFile, "The file '" + m_pager->FileName() +
                                              "' is damaged: it was cut off after " +
                                              std::to_string(pageCount) + " pages.");
  };
  GlobalMap map;
  try {
    map = ReadMap(*m_pager);
    if (m_pager->EndsInsidePage() && !map.IsFree(*m_pager, pageCount)) raiseCutOff();
  } catch (const Error& error) {
    // Only changes need the map.
    if (error.Number() != ErrorNumber::DamagedFile || m_pager->EndsInsidePage()) throw;
    return;
  }
  if (!map.isInline) return;
  if (map.first > pageCount) raiseCutOff();
  for (std::uint64_t page = pageCount; page < map.End(); ++page) {
    if (!TestBit(map.Bitmap(), static_cast<std::uint32_t>(page - map.first))) raiseCutOff();
  }
}

void PageAllocator::Mark(PageNumber page, bool free) {
  Cover(page);
  const GlobalMap map = ReadMap(*m_pager);
  if (map.isInline) {
    AssignBit(MutableMapRow(m_pager->Change(kGlobalMapPage)).subspan(kBitmap), page - map.first, free);
    return;
  }
  const MutablePage mapPage = m_pager->Change(map.MapPageOf(page));
  MapPageBitmap(*m_pager, mapPage);
  AssignBit(std::span(mapPage.Bytes()).subspan(kMapPageBitmap), page % kPagesPerMapPage, free);
}

MutablePage PageAllocator::Allocate() {
  PageNumber found = FindFree();
  if (found == kNoPage && m_searchFrom != 0) {
    m_searchFrom = 0;  // a unit that was undone gave pages back
    found = FindFree();
  }
  if (found != kNoPage) {
    m_searchFrom = found;
    MutablePage page = m_pager->Change(found);
    page.Bytes().fill(std::byte{0});
    Mark(found, false);
    return page;
  }
  MutablePage page = m_pager->Append();
  Mark(page.Number(), false);
  return page;
}

MutablePage PageAllocator::AllocateMapPage() {
  MutablePage page = Allocate();
  StoreU8(page.Data(), page_type::kUsageMap);
  StoreU8(page.Data() + 1, 1);
  return page;
}

void PageAllocator::Free(PageNumber page) {
  Mark(page, true);
  m_searchFrom = std::min(m_searchFrom, page);
}

// Gives the map a bit for `page` of the file. A page without one was in use.
void PageAllocator::Cover(PageNumber page) {
  const GlobalMap map = ReadMap(*m_pager);
  if (map.Covers(page)) return;
  if (map.isInline) {
    if (WidenRow(page)) return;
    MakeReferences();
    return;
  }
  const std::size_t k = page / kPagesPerMapPage;
  if (k >= map.References()) RaiseDamaged(*m_pager, "does not cover the file and cannot grow");
  const MutablePage mapPage = AppendMapPage(*m_pager, static_cast<PageNumber>(k * kPagesPerMapPage), map);
  StoreU32(MutableMapRow(m_pager->Change(kGlobalMapPage)).data() + kReferences + 4 * k, mapPage.Number());
  Mark(mapPage.Number(), false);
}

// Makes the row of the inline map long enough for `page`; false when page 1 has no space for it. A map that
// has to grow downwards begins at page 0 from then on.
bool PageAllocator::WidenRow(PageNumber page) {
  const GlobalMap map = ReadMap(*m_pager);
  const PageNumber first = page < map.first ? 0 : map.first;
  std::size_t size = map.row.size() + (map.first - first + 7) / 8;
  while (page >= first + 8 * std::uint64_t{size - kBitmap})
    size += kGlobalGrowth;
  const MutablePage changed = m_pager->Change(kGlobalMapPage);
  DataPage data(changed.Bytes(), kGlobalMapPage);
  if (!data.FitsInPlace(kGlobalMapSlot, size)) return false;
  std::vector<std::byte> row(size);
  StoreU8(row.data(), kInline);
  StoreU32(row.data() + kFirstPage, first);
  const auto bitmap = std::span(row).subspan(kBitmap);
  for (std::uint32_t bit = 0; bit < 8 * bitmap.size(); ++bit) {
    const PageNumber number = first + bit;
    if (number >= m_pager->PageCount() || map.IsFree(*m_pager, number)) AssignBit(bitmap, bit, true);
  }
  data.Replace(kGlobalMapSlot, row, data_page::kLive);
  return true;
}

// Turns the inline map into one by reference, with map pages for the whole file.
void PageAllocator::MakeReferences() {
  GlobalMap map = ReadMap(*m_pager);
  // The pages are made from a copy: the row itself is what changes.
  const std::vector<std::byte> old(map.row.begin(), map.row.end());
  map.row = old;
  std::vector<std::byte> row(std::max(old.size(), kNewRowBytes));
  StoreU8(row.data(), kByReference);
  std::vector<PageNumber> mapPages;
  // Map pages are appended too, and may need a further one.
  while (std::uint64_t{mapPages.size()} * kPagesPerMapPage < m_pager->PageCount()) {
    const auto first = static_cast<PageNumber>(mapPages.size() * kPagesPerMapPage);
    mapPages.push_back(AppendMapPage(*m_pager, first, map).Number());
    StoreU32(row.data() + kReferences + 4 * (mapPages.size() - 1), mapPages.back());
  }
  const MutablePage changed = m_pager->Change(kGlobalMapPage);
  DataPage data(changed.Bytes(), kGlobalMapPage);
  if (!data.FitsInPlace(kGlobalMapSlot, row.size())) RaiseDamaged(*m_pager, "cannot grow");
  data.Replace(kGlobalMapSlot, row, data_page::kLive);
  for (const PageNumber mapPage : mapPages)
    Mark(mapPage, false);
}

}  // namespace jet
