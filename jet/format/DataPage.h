#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"

namespace jet::format {

// Data page: rows of one table, usage-map rows, or pieces of long values.
//
//   0x00  01 01
//   0x02  u16  free space: lowest row offset - 14 - 2 * slots
//   0x04  u32  owner: definition page of the table; 0 usage maps; "LVAL" long values; 1 on page 1
//   0x08  u32  0; on pages of a chained long value its tag
//   0x0c  u16  number of slots
//   0x0e  u16  each slot; rows fill the page from its end, row i ends where row i-1 starts
//
// Slot: bits 12..0 offset of the row, and flags:
//
//   0x0000 live row
//   0x4000 moved row: its first 4 bytes are a row pointer to the real row
//   0x8000 target of a moved row: not counted as a row
//   0xc000 deleted row
namespace data_page {
inline constexpr std::size_t kFreeSpace = 0x02;
inline constexpr std::size_t kOwner = 0x04;
inline constexpr std::size_t kTag = 0x08;
inline constexpr std::size_t kSlotCount = 0x0c;
inline constexpr std::size_t kSlots = 0x0e;
inline constexpr std::size_t kMaxSlots = 255;  // a row pointer has one byte for the slot

inline constexpr std::uint32_t kOwnerUsageMaps = 0;
inline constexpr std::uint32_t kOwnerGlobalMap = 1;
inline constexpr std::uint32_t kOwnerLongValues = 0x4C41564C;  // "LVAL"

inline constexpr std::uint16_t kOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kFlagsMask = 0xC000;
inline constexpr std::uint16_t kLive = 0x0000;
inline constexpr std::uint16_t kMoved = 0x4000;
inline constexpr std::uint16_t kTarget = 0x8000;
inline constexpr std::uint16_t kDeleted = 0xC000;
}  // namespace data_page

/// A slot of a data page and where its bytes lie.
struct RowSlot {
  std::uint16_t flags = 0;  ///< data_page::kLive, kMoved, kTarget or kDeleted
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Reads the rows of a data page. Borrows the page.
class DataPageView {
 public:
  /// `number` is used in messages. Raises DamagedFile when the page is no data page or its slots do not fit.
  DataPageView(std::span<const std::byte> page, std::uint32_t number)
      : m_page(page), m_number(number), m_slots(LoadU16(page.data() + data_page::kSlotCount)) {
    if (LoadU8(page.data()) != page_type::kData || data_page::kSlots + 2 * m_slots > kPageSize) RaiseNoRows();
  }

  std::uint32_t Owner() const { return LoadU32(m_page.data() + data_page::kOwner); }
  std::uint32_t Tag() const;
  std::size_t FreeSpace() const;
  std::size_t SlotCount() const { return m_slots; }
  /// Raises DamagedFile for a slot that the page does not have, or whose bytes do not lie inside the row
  /// area.
  RowSlot Slot(std::size_t slot) const {
    if (slot >= m_slots) RaiseDamaged(slot);
    const std::byte* at = m_page.data() + data_page::kSlots + 2 * slot;
    const std::uint16_t word = LoadU16(at);
    RowSlot result;
    result.flags = word & data_page::kFlagsMask;
    result.begin = word & data_page::kOffsetMask;
    result.end = slot == 0 ? kPageSize : LoadU16(at - 2) & data_page::kOffsetMask;
    if (result.begin > result.end || result.end > kPageSize || result.begin < data_page::kSlots + 2 * m_slots)
      RaiseDamaged(slot);
    return result;
  }
  std::span<const std::byte> Row(const RowSlot& slot) const {
    return m_page.subspan(slot.begin, slot.end - slot.begin);
  }
  std::span<const std::byte> Row(std::size_t slot) const { return Row(Slot(slot)); }
  /// No slot but deleted ones.
  bool IsEmpty() const;
  /// Whether a further row of `size` bytes fits.
  bool Fits(std::size_t size) const;

 protected:
  [[noreturn]] void RaiseNoRows() const;
  [[noreturn]] void RaiseDamaged(std::size_t slot) const;
  std::span<const std::byte> m_page;
  std::uint32_t m_number;
  std::size_t m_slots;
};

/// Changes the rows of a data page, keeping the free space figure right. Borrows the page.
class DataPage : public DataPageView {
 public:
  DataPage(std::span<std::byte> page, std::uint32_t number);
  /// Makes `page` an empty data page.
  static void Initialize(std::span<std::byte> page, std::uint32_t owner);

  void SetTag(std::uint32_t tag);
  /// Adds a row in a new slot at the end. It must fit.
  std::uint8_t Insert(std::span<const std::byte> row, std::uint16_t flags = data_page::kLive);
  /// Room for a row of `size` bytes in the place of `slot`'s present one.
  bool FitsInPlace(std::size_t slot, std::size_t size) const;
  /// Replaces a row's bytes; later rows of the page move. It must fit.
  void Replace(std::size_t slot, std::span<const std::byte> row, std::uint16_t flags);
  /// Overwrites the beginning of a row's bytes.
  void Overwrite(std::size_t slot, std::span<const std::byte> bytes, std::uint16_t flags);
  /// Removes a row's bytes, closing the gap; the slot stays, marked deleted.
  void Remove(std::size_t slot) { Replace(slot, {}, data_page::kDeleted); }
  /// The bytes of a row for changing in place.
  std::span<std::byte> MutableRow(std::size_t slot);

 private:
  std::size_t LowestOffset() const;
  void SetSlot(std::size_t slot, std::size_t offset, std::uint16_t flags);
  void SetFreeSpace();
  std::span<std::byte> m_bytes;
};

}  // namespace jet::format
