#include "jet/table/RowStore.h"

#include <algorithm>
#include <array>
#include <vector>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"

namespace jet {

using format::DataPage;
using format::DataPageView;
using format::RowSlot;
namespace data_page = format::data_page;

namespace {
constexpr std::size_t kPointerBytes = 4;
}  // namespace

RowStore::RowStore(Pager& pager, PageAllocator& allocator, std::uint32_t ownedMap, std::uint32_t freeMap,
                   PageNumber definitionPage)
    : m_pager(&pager), m_pages(pager, allocator, ownedMap, freeMap, definitionPage) {}

RowId RowStore::Target(const DataPageView& view, const RowSlot& slot) const {
  const auto bytes = view.Row(slot);
  if (bytes.size() < kPointerBytes) {
    throw Error(ErrorNumber::DamagedFile, "A moved row is damaged: it has no room for its pointer.");
  }
  const std::uint32_t pointer = format::LoadU32(bytes.data());
  return {format::RowPointerPage(pointer), format::RowPointerSlot(pointer)};
}

RowRef RowStore::Resolve(const PageHandle& page, const DataPageView& view, const RowSlot& slot) const {
  if (slot.flags != data_page::kMoved) return RowRef(page, view.Row(slot));
  const RowId target = Target(view, slot);
  PageHandle other = m_pager->Get(target.page);
  const DataPageView otherView(other.Bytes(), target.page);
  const RowSlot body = otherView.Slot(target.slot);
  if (otherView.Owner() != m_pages.Owner() || body.flags != data_page::kTarget) {
    throw Error(ErrorNumber::DamagedFile, "A moved row of page " + std::to_string(page.Number()) +
                                              " is damaged: its pointer leads to no row of the table.");
  }
  const auto bytes = otherView.Row(body);
  return RowRef(std::move(other), bytes);
}

std::optional<RowRef> RowStore::Fetch(RowId id) const {
  if (id.page == 0 || id.page >= m_pager->PageCount()) return std::nullopt;
  const PageHandle page = m_pager->Get(id.page);
  if (std::to_integer<std::uint8_t>(page.Data()[0]) != format::page_type::kData) return std::nullopt;
  const DataPageView view(page.Bytes(), id.page);
  if (view.Owner() != m_pages.Owner() || id.slot >= view.SlotCount()) return std::nullopt;
  const RowSlot slot = view.Slot(id.slot);
  if (slot.flags != data_page::kLive && slot.flags != data_page::kMoved) return std::nullopt;
  return Resolve(page, view, slot);
}

void RowStore::Replace(RowId id, std::span<const std::byte> row) {
  const MutablePage page = m_pager->Change(id.page);
  DataPage home(page.Bytes(), id.page);
  const RowSlot slot = home.Slot(id.slot);
  if (home.FitsInPlace(id.slot, row.size())) {
    const bool moved = slot.flags == data_page::kMoved;
    const RowId old = moved ? Target(home, slot) : RowId{};
    home.Replace(id.slot, row, data_page::kLive);
    if (moved) m_pages.Remove(old);
    if (row.size() < slot.end - slot.begin) m_pages.RoomMade(id.page);
    return;
  }
  if (slot.flags == data_page::kMoved) {
    const RowId old = Target(home, slot);
    {
      const MutablePage oldPage = m_pager->Change(old.page);
      DataPage body(oldPage.Bytes(), old.page);
      if (body.FitsInPlace(old.slot, row.size())) {
        body.Replace(old.slot, row, data_page::kTarget);
        return;
      }
    }
    m_pages.Remove(old);
  }
  const RowId target = m_pages.Insert(row, data_page::kTarget);
  std::array<std::byte, kPointerBytes> pointer{};
  format::StoreU32(pointer.data(), format::MakeRowPointer(target.page, target.slot));
  // The page may have changed under `home`: the insert can put the row on no page that it does not fit, so
  // not on this one.
  DataPage homeNow(page.Bytes(), id.page);
  if (slot.end - slot.begin < kPointerBytes) {
    if (!homeNow.FitsInPlace(id.slot, kPointerBytes)) {
      throw Error(ErrorNumber::RecordTooLarge,
                  "The row cannot grow: its page has no room for a pointer to it.");
    }
    homeNow.Replace(id.slot, pointer, data_page::kMoved);
  } else {
    homeNow.Overwrite(id.slot, pointer, data_page::kMoved);
  }
}

void RowStore::Remove(RowId id) {
  RowSlot slot;
  RowId target;
  {
    const PageHandle page = m_pager->Get(id.page);
    const DataPageView view(page.Bytes(), id.page);
    slot = view.Slot(id.slot);
    if (slot.flags == data_page::kMoved) target = Target(view, slot);
  }
  if (slot.flags == data_page::kMoved) m_pages.Remove(target);
  m_pages.Remove(id);
}

}  // namespace jet
