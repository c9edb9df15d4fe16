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

struct GlobalMap {
  PageHandle page;
  std::span<const std::byte> row;
  bool isInline = true;
  std::uint32_t first = 0;
  std::span<const std::byte> Bitmap() const { return row.subspan(kBitmap); }
  std::size_t References() const { return (row.size() - kReferences) / 4; }
  PageNumber Reference(std::size_t k) const { return LoadU32(row.data() + kReferences + 4 * k); }
  /// One past the last page that the map has a bit for.
  std::uint64_t End() const {
    return isInline ? std::uint64_t{first} + 8 * Bitmap().size()
                    : std::uint64_t{References()} * kPagesPerMapPage;
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
  if (map.first != 0) RaiseDamaged(pager, "does not begin with the first page");
  return map;
}

std::span<std::byte> MutableMapRow(const MutablePage& page) {
  return DataPage(page.Bytes(), page.Number()).MutableRow(kGlobalMapSlot);
}

std::span<std::byte> MapPageBitmap(const Pager& pager, const MutablePage& page) {
  if (LoadU8(page.Data()) != page_type::kUsageMap) RaiseDamaged(pager, "refers to a page that holds no map");
  return std::span(page.Bytes()).subspan(kMapPageBitmap);
}

}  // namespace

PageNumber PageAllocator::FindFree() const {
  const GlobalMap map = ReadMap(*m_pager);
  PageNumber found = kNoPage;
  if (map.isInline) {
    found = FindSetBit(map.Bitmap(), m_searchFrom);
  } else {
    for (std::size_t k = m_searchFrom / kPagesPerMapPage; k < map.References() && found == kNoPage; ++k) {
      if (map.Reference(k) == 0) continue;
      const auto base = static_cast<PageNumber>(k * kPagesPerMapPage);
      const PageHandle page = m_pager->Get(map.Reference(k));
      if (LoadU8(page.Data()) != page_type::kUsageMap)
        RaiseDamaged(*m_pager, "refers to a page that holds no map");
      const std::uint32_t bit = FindSetBit(std::span(page.Bytes()).subspan(kMapPageBitmap),
                                           m_searchFrom > base ? m_searchFrom - base : 0);
      if (bit != kNoPage) found = base + bit;
    }
  }
  if (found >= m_pager->PageCount()) return kNoPage;
  if (found <= system_page::kRelationships) RaiseDamaged(*m_pager, "gives away a page of the system tables");
  return found;
}

bool PageAllocator::IsFree(PageNumber page) const {
  const GlobalMap map = ReadMap(*m_pager);
  if (page >= map.End()) return false;
  if (map.isInline) return TestBit(map.Bitmap(), page);
  const PageNumber reference = map.Reference(page / kPagesPerMapPage);
  if (reference == 0) return false;
  const PageHandle handle = m_pager->Get(reference);
  if (LoadU8(handle.Data()) != page_type::kUsageMap)
    RaiseDamaged(*m_pager, "refers to a page that holds no map");
  return TestBit(std::span(handle.Bytes()).subspan(kMapPageBitmap), page % kPagesPerMapPage);
}

void PageAllocator::CheckFileIsWhole() const {
  const GlobalMap map = ReadMap(*m_pager);
  if (!map.isInline) return;
  for (std::uint64_t page = m_pager->PageCount(); page < map.End(); ++page) {
    if (TestBit(map.Bitmap(), static_cast<PageNumber>(page))) continue;
    throw Error(ErrorNumber::DamagedFile, "The file '" + m_pager->FileName() +
                                              "' is damaged: it was cut off after " +
                                              std::to_string(m_pager->PageCount()) + " pages.");
  }
}

void PageAllocator::Mark(PageNumber page, bool free) {
  const GlobalMap map = ReadMap(*m_pager);
  if (page >= map.End()) RaiseDamaged(*m_pager, "does not cover the file");
  if (map.isInline) {
    AssignBit(MutableMapRow(m_pager->Change(kGlobalMapPage)).subspan(kBitmap), page, free);
  } else {
    const PageNumber reference = map.Reference(page / kPagesPerMapPage);
    if (reference == 0) RaiseDamaged(*m_pager, "does not cover the file");
    AssignBit(MapPageBitmap(*m_pager, m_pager->Change(reference)), page % kPagesPerMapPage, free);
  }
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
  Cover(m_pager->PageCount());
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

// Makes the map have a bit for `page`, which is about to be appended. New bits are set: past the end of the
// file.
void PageAllocator::Cover(PageNumber page) {
  GlobalMap map = ReadMap(*m_pager);
  if (map.isInline) {
    if (page < map.End()) return;
    const std::size_t size = map.row.size() + kGlobalGrowth;
    const MutablePage changed = m_pager->Change(kGlobalMapPage);
    DataPage data(changed.Bytes(), kGlobalMapPage);
    if (data.FitsInPlace(kGlobalMapSlot, size)) {
      std::vector<std::byte> row(map.row.begin(), map.row.end());
      row.resize(size, std::byte{0xFF});
      data.Replace(kGlobalMapSlot, row, data_page::kLive);
      return;
    }
    MakeReferences();
    map = ReadMap(*m_pager);
  }
  const std::size_t k = page / kPagesPerMapPage;
  if (k >= map.References()) RaiseDamaged(*m_pager, "does not cover the file and cannot grow");
  if (map.Reference(k) != 0) return;
  // The map page is itself the next page of the file, and in use.
  const MutablePage mapPage = m_pager->Append();
  mapPage.Bytes().fill(std::byte{0xFF});
  StoreU32(mapPage.Data(), 0);
  StoreU8(mapPage.Data(), page_type::kUsageMap);
  StoreU8(mapPage.Data() + 1, 1);
  StoreU32(MutableMapRow(m_pager->Change(kGlobalMapPage)).data() + kReferences + 4 * k, mapPage.Number());
  Mark(mapPage.Number(), false);
}

// Turns the inline map into one by reference, whose first map page takes over the bits.
void PageAllocator::MakeReferences() {
  const GlobalMap map = ReadMap(*m_pager);
  const std::vector<std::byte> bits(map.Bitmap().begin(), map.Bitmap().end());
  const MutablePage mapPage = m_pager->Append();
  mapPage.Bytes().fill(std::byte{0xFF});
  StoreU32(mapPage.Data(), 0);
  StoreU8(mapPage.Data(), page_type::kUsageMap);
  StoreU8(mapPage.Data() + 1, 1);
  std::ranges::copy(bits, mapPage.Data() + kMapPageBitmap);
  const MutablePage changed = m_pager->Change(kGlobalMapPage);
  const auto row = MutableMapRow(changed);
  std::ranges::fill(row, std::byte{0});
  StoreU8(row.data(), kByReference);
  StoreU32(row.data() + kReferences, mapPage.Number());
  Mark(mapPage.Number(), false);
}

}  // namespace jet
