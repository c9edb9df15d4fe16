#include "jet/format/DataPage.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <string>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"

namespace jet::format {

using namespace data_page;

void DataPageView::RaiseNoRows() const {
  throw Error(ErrorNumber::DamagedFile,
              "Page " + std::to_string(m_number) + " is damaged: it is not a page of rows.");
}

void DataPageView::RaiseDamaged(std::size_t slot) const {
  throw Error(ErrorNumber::DamagedFile, "Page " + std::to_string(m_number) + " is damaged: row " +
                                            std::to_string(slot) + " does not lie inside the page.");
}

std::uint32_t DataPageView::Tag() const {
  return LoadU32(m_page.data() + kTag);
}
std::size_t DataPageView::FreeSpace() const {
  return LoadU16(m_page.data() + kFreeSpace);
}

bool DataPageView::IsEmpty() const {
  for (std::size_t slot = 0; slot < m_slots; ++slot) {
    if ((LoadU16(m_page.data() + kSlots + 2 * slot) & kFlagsMask) != kDeleted) return false;
  }
  return true;
}

bool DataPageView::Fits(std::size_t size) const {
  return m_slots < kMaxSlots && size + 2 <= FreeSpace();
}

DataPage::DataPage(std::span<std::byte> page, std::uint32_t number)
    : DataPageView(page, number), m_bytes(page) {
  // A free space figure that is too large would let rows overwrite the slots.
  if (LowestOffset() < kSlots + 2 * m_slots || FreeSpace() > LowestOffset() - kSlots - 2 * m_slots) {
    RaiseDamaged(m_slots == 0 ? 0 : m_slots - 1);
  }
}

void DataPage::Initialize(std::span<std::byte> page, std::uint32_t owner) {
  std::ranges::fill(page, std::byte{0});
  StoreU8(page.data(), page_type::kData);
  StoreU8(page.data() + 1, 1);
  StoreU32(page.data() + kOwner, owner);
  StoreU16(page.data() + kFreeSpace, kPageSize - kSlots);
}

void DataPage::SetTag(std::uint32_t tag) {
  StoreU32(m_bytes.data() + kTag, tag);
}

std::size_t DataPage::LowestOffset() const {
  return m_slots == 0 ? kPageSize : LoadU16(m_bytes.data() + kSlots + 2 * (m_slots - 1)) & kOffsetMask;
}

void DataPage::SetSlot(std::size_t slot, std::size_t offset, std::uint16_t flags) {
  StoreU16(m_bytes.data() + kSlots + 2 * slot, static_cast<std::uint16_t>(offset | flags));
}

void DataPage::SetFreeSpace() {
  StoreU16(m_bytes.data() + kFreeSpace, static_cast<std::uint16_t>(LowestOffset() - kSlots - 2 * m_slots));
}

std::uint8_t DataPage::Insert(std::span<const std::byte> row, std::uint16_t flags) {
  assert(Fits(row.size()));
  const std::size_t offset = LowestOffset() - row.size();
  std::ranges::copy(row, m_bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  const std::size_t slot = m_slots++;
  StoreU16(m_bytes.data() + kSlotCount, static_cast<std::uint16_t>(m_slots));
  SetSlot(slot, offset, flags);
  SetFreeSpace();
  return static_cast<std::uint8_t>(slot);
}

bool DataPage::FitsInPlace(std::size_t slot, std::size_t size) const {
  const RowSlot present = Slot(slot);
  return size <= present.end - present.begin + FreeSpace();
}

void DataPage::Replace(std::size_t slot, std::span<const std::byte> row, std::uint16_t flags) {
  const RowSlot present = Slot(slot);
  const std::size_t lowest = LowestOffset();
  const std::size_t begin = present.end - row.size();
  if (begin != present.begin) {
    // The rows below move by the difference, up or down.
    for (std::size_t later = slot + 1; later < m_slots; ++later)
      Slot(later);  // all inside the page, or nothing moves
    std::memmove(m_bytes.data() + lowest + begin - present.begin, m_bytes.data() + lowest,
                 present.begin - lowest);
    for (std::size_t later = slot + 1; later < m_slots; ++later) {
      const std::uint16_t word = LoadU16(m_bytes.data() + kSlots + 2 * later);
      SetSlot(later, (word & kOffsetMask) + begin - present.begin, word & kFlagsMask);
    }
  }
  std::ranges::copy(row, m_bytes.begin() + static_cast<std::ptrdiff_t>(begin));
  SetSlot(slot, begin, flags);
  SetFreeSpace();
}

void DataPage::Overwrite(std::size_t slot, std::span<const std::byte> bytes, std::uint16_t flags) {
  const RowSlot present = Slot(slot);
  assert(bytes.size() <= present.end - present.begin);
  std::ranges::copy(bytes, m_bytes.begin() + static_cast<std::ptrdiff_t>(present.begin));
  SetSlot(slot, present.begin, flags);
}

std::span<std::byte> DataPage::MutableRow(std::size_t slot) {
  const RowSlot present = Slot(slot);
  return m_bytes.subspan(present.begin, present.end - present.begin);
}

}  // namespace jet::format
