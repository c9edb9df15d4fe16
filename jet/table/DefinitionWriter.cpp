#include "jet/table/DefinitionWriter.h"

#include <algorithm>

#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/IndexPage.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/format/UsageMapRow.h"
#include "jet/table/UsageMap.h"

namespace jet {

namespace layout = format::definition_page;

namespace {

/// Makes rows of usage maps on one page after the other.
class MapRows {
 public:
  MapRows(Pager& pager, PageAllocator& allocator, PageNumber page)
      : m_pager(&pager), m_allocator(&allocator), m_page(page) {}

  /// The row pointer of a new, empty map.
  std::uint32_t Create() {
    if (m_page == 0 || !HasRoom()) m_page = NewMapPage(*m_allocator);
    MutablePage page = m_pager->Change(m_page);
    return UsageMap::Create(page);
  }

 private:
  bool HasRoom() const {
    const PageHandle page = m_pager->Get(m_page);
    const format::DataPageView view(page.Bytes(), m_page);
    return view.Owner() == format::data_page::kOwnerUsageMaps && view.Fits(format::usage_map::kNewRowBytes);
  }

  Pager* m_pager;
  PageAllocator* m_allocator;
  PageNumber m_page;
};

/// Size of the pages' bytes that a stream of a definition takes: page heads are repeated on each page.
std::size_t PagesFor(std::size_t streamSize) {
  const std::size_t perPage = kPageSize - layout::kHeadSize;
  return (streamSize - layout::kHeadSize + perPage - 1) / perPage;
}

}  // namespace

PageNumber NewMapPage(PageAllocator& allocator) {
  const MutablePage page = allocator.Allocate();
  format::DataPage::Initialize(page.Bytes(), format::data_page::kOwnerUsageMaps);
  return page.Number();
}

void CompleteDefinition(Pager& pager, PageAllocator& allocator, format::TableDefinition& definition,
                        PageNumber mapPage) {
  MapRows maps(pager, allocator, mapPage);
  if (definition.ownedPages == 0) definition.ownedPages = maps.Create();
  if (definition.freePages == 0) definition.freePages = maps.Create();

  std::vector<format::LongValueMaps*> longValues;
  for (format::LongValueMaps& column : definition.longValueMaps)
    longValues.push_back(&column);
  std::sort(longValues.begin(), longValues.end(),
            [](const auto* a, const auto* b) { return a->column < b->column; });
  for (format::LongValueMaps* column : longValues) {
    if (column->owned == 0) column->owned = maps.Create();
    if (column->free == 0) column->free = maps.Create();
  }

  for (format::IndexDefinition& index : definition.indexes) {
    if (index.root != 0) continue;
    index.usageMap = maps.Create();
    {
      const MutablePage leaf = allocator.Allocate();
      format::IndexPage::Initialize(leaf.Bytes(), definition.page, 0);
      index.root = leaf.Number();
    }
    UsageMap(pager, index.usageMap).Add(index.root, allocator);
  }
}

void WriteDefinition(Pager& pager, PageAllocator& allocator, format::TableDefinition& definition,
                     const format::DefinitionCounts& counts) {
  const Bytes stream = format::EncodeTableDefinition(definition, counts);
  std::vector<std::uint32_t>& pages = definition.pages;
  while (pages.size() < PagesFor(stream.size()))
    pages.push_back(allocator.Allocate().Number());
  while (pages.size() > PagesFor(stream.size())) {
    allocator.Free(pages.back());
    pages.pop_back();
  }
  std::size_t from = layout::kHeadSize;
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const MutablePage page = pager.Change(pages[i]);
    const std::size_t size = std::min(kPageSize - layout::kHeadSize, stream.size() - from);
    page.Bytes().fill(std::byte{0});
    std::copy_n(stream.begin(), 2, page.Bytes().begin());  // page type
    std::copy_n(stream.begin() + static_cast<std::ptrdiff_t>(from), size,
                page.Bytes().begin() + layout::kHeadSize);
    const std::size_t left = kPageSize - layout::kHeadSize - size;
    format::StoreU16(page.Data() + layout::kFreeBytes, static_cast<std::uint16_t>(left));
    format::StoreU32(page.Data() + layout::kNextPage, i + 1 < pages.size() ? pages[i + 1] : 0);
    from += size;
  }
}

}  // namespace jet
