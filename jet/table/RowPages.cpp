#include "jet/table/RowPages.h"

#include <cassert>

#include "jet/Error.h"
#include "jet/format/DataPage.h"
#include "jet/format/PageLayout.h"

namespace jet {

using format::DataPage;
using format::DataPageView;
namespace data_page = format::data_page;

namespace {
// Room that makes a page worth trying for further rows.
constexpr std::size_t kWorthTrying = 512;
// A page with less room than this is not tried again once a row did not fit, until a row of it goes:
// otherwise nearly full pages would always be tried first.
constexpr std::size_t kWorthTryingAgain = kPageSize / 2;
// Pages tried for a row before a new one is taken; rows longer than most rooms would otherwise try them all.
constexpr int kMaxTries = 16;
}  // namespace

RowPages::RowPages(Pager& pager, PageAllocator& allocator, std::uint32_t ownedMap, std::uint32_t freeMap,
                   std::uint32_t owner)
    : m_pager(&pager),
      m_allocator(&allocator),
      m_owned(pager, ownedMap),
      m_free(pager, freeMap),
      m_owner(owner) {}

std::optional<RowId> RowPages::PlaceOn(PageNumber number, std::size_t size) const {
  const PageHandle page = m_pager->Get(number);
  if (format::page_type::kData != std::to_integer<std::uint8_t>(page.Data()[0])) return std::nullopt;
  const DataPageView view(page.Bytes(), number);
  if (view.Owner() != m_owner || !view.Fits(size)) return std::nullopt;
  return RowId{number, static_cast<std::uint8_t>(view.SlotCount())};
}

std::optional<RowId> RowPages::LikelyPlace(std::size_t size) const {
  if (m_lastUsed == 0 || m_lastUsed >= m_pager->PageCount() || !m_free.Contains(m_lastUsed))
    return std::nullopt;
  return PlaceOn(m_lastUsed, size);
}

void RowPages::Put(RowId place, std::span<const std::byte> row, std::uint16_t flags) {
  const MutablePage page = m_pager->Change(place.page);
  [[maybe_unused]] const std::uint8_t slot = DataPage(page.Bytes(), place.page).Insert(row, flags);
  assert(slot == place.slot);
}

RowId RowPages::Insert(std::span<const std::byte> row, std::uint16_t flags) {
  std::optional<RowId> place = LikelyPlace(row.size());
  int tries = 0;
  for (PageNumber page = place ? format::kNoPage : m_free.Next(0);
       page != format::kNoPage && tries < kMaxTries; page = m_free.Next(page + 1), ++tries) {
    place = PlaceOn(page, row.size());
    if (place) {
      m_lastUsed = page;
      break;
    }
    const PageHandle full = m_pager->Get(page);
    const DataPageView view(full.Bytes(), page);
    if (view.FreeSpace() < kWorthTryingAgain || view.SlotCount() >= data_page::kMaxSlots) m_free.Remove(page);
  }
  if (place) {
    Put(*place, row, flags);
    return *place;
  }
  const MutablePage page = NewPage();
  m_free.Add(page.Number(), *m_allocator);
  m_lastUsed = page.Number();
  return {page.Number(), DataPage(page.Bytes(), page.Number()).Insert(row, flags)};
}

MutablePage RowPages::NewPage() {
  MutablePage page = m_allocator->Allocate();
  DataPage::Initialize(page.Bytes(), m_owner);
  m_owned.Add(page.Number(), *m_allocator);
  return page;
}

void RowPages::Remove(RowId row) {
  {
    const MutablePage page = m_pager->Change(row.page);
    DataPage(page.Bytes(), row.page).Remove(row.slot);
  }
  RoomMade(row.page);
}

void RowPages::RoomMade(PageNumber number) {
  bool isEmpty = false;
  bool hasRoom = false;
  {
    const PageHandle page = m_pager->Get(number);
    const DataPageView view(page.Bytes(), number);
    isEmpty = view.IsEmpty();
    hasRoom = view.FreeSpace() >= kWorthTrying && view.SlotCount() < data_page::kMaxSlots && view.Tag() == 0;
  }
  if (isEmpty) {
    m_owned.Remove(number);
    m_free.Remove(number);
    m_allocator->Free(number);
    m_pager->NoteFreed(number);
  } else if (hasRoom && !m_free.Contains(number)) {
    m_free.Add(number, *m_allocator);
  }
}

}  // namespace jet
