#include "jet/table/LongValues.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/PageLayout.h"
#include "jet/table/RowPages.h"

namespace jet {

using format::DataPage;
using format::DataPageView;
using format::LongValueReference;
namespace data_page = format::data_page;

namespace {

constexpr std::size_t kNextPiece = 4;        // row pointer of the next piece, before a chained piece's bytes
constexpr std::size_t kChainedPiece = 4072;  // bytes of a full piece of a chain
constexpr std::size_t kLongestOnePiece = 4072;  // longer values are chained

}  // namespace

LongValues::LongValues(Pager& pager, PageAllocator& allocator, const format::TableDefinition& table,
                       const format::ColumnDefinition& column)
    : m_pager(&pager), m_allocator(&allocator), m_columnName(&column.name) {
  for (const format::LongValueMaps& maps : table.longValueMaps) {
    if (maps.column == column.number && maps.owned != 0 && maps.free != 0) m_maps = &maps;
  }
}

void LongValues::RaiseDamaged(const char* what) const {
  throw Error(ErrorNumber::DamagedFile,
              "A value of column '" + *m_columnName + "' is damaged: " + what + ".");
}

Bytes LongValues::Read(std::span<const std::byte> stored) const {
  const LongValueReference reference = LongValueReference::Decode(stored, *m_columnName);
  if (reference.mode == LongValueReference::Mode::Inline) {
    const auto value = stored.subspan(LongValueReference::kSize);
    return {value.begin(), value.end()};
  }
  if (reference.length > std::uint64_t{m_pager->PageCount()} * kPageSize)
    RaiseDamaged("it is longer than the file");
  Bytes value;
  std::uint32_t pointer = reference.pointer;
  const bool chained = reference.mode == LongValueReference::Mode::Chained;
  while (pointer != 0) {
    const PageNumber number = format::RowPointerPage(pointer);
    const PageHandle page = m_pager->Get(number);
    const DataPageView view(page.Bytes(), number);
    if (view.Owner() != data_page::kOwnerLongValues)
      RaiseDamaged("it lies on a page that holds no long values");
    const format::RowSlot slot = view.Slot(format::RowPointerSlot(pointer));
    if (slot.flags == data_page::kDeleted) RaiseDamaged("a piece of it was deleted");
    auto piece = view.Row(slot);
    pointer = 0;
    if (chained) {
      if (piece.size() <= kNextPiece) RaiseDamaged("a piece of it is too short");
      pointer = format::LoadU32(piece.data());
      piece = piece.subspan(kNextPiece);
    }
    // Every piece has at least one byte, so that a chain that is a ring ends here.
    if (value.size() + piece.size() > reference.length) RaiseDamaged("it is longer than it says");
    value.insert(value.end(), piece.begin(), piece.end());
  }
  if (value.size() != reference.length) RaiseDamaged("it is shorter than it says");
  return value;
}

Bytes LongValues::Write(std::span<const std::byte> value) {
  if (value.size() > LongValueReference::kLongest) {
    throw Error(ErrorNumber::RecordTooLarge, "The value for column '" + *m_columnName + "' is too long.");
  }
  LongValueReference reference;
  reference.length = static_cast<std::uint32_t>(value.size());
  Bytes stored;
  if (value.size() <= LongValueReference::kLongestInline) {
    reference.AppendTo(stored);
    stored.insert(stored.end(), value.begin(), value.end());
    return stored;
  }
  if (m_maps == nullptr) {
    throw Error(ErrorNumber::FeatureNotSupported,
                "The file keeps no pages for long values of column '" + *m_columnName + "'.");
  }
  RowPages pages(*m_pager, *m_allocator, m_maps->owned, m_maps->free, data_page::kOwnerLongValues);
  if (value.size() <= kLongestOnePiece) {
    reference.mode = LongValueReference::Mode::OnePiece;
    const RowId row = pages.Insert(value, data_page::kLive);
    reference.pointer = format::MakeRowPointer(row.page, row.slot);
    reference.AppendTo(stored);
    return stored;
  }
  // A chain has separate pages, tagged alike, and is written from its end so that each piece knows the
  // next.
  reference.mode = LongValueReference::Mode::Chained;
  const std::size_t pieces = (value.size() + kChainedPiece - 1) / kChainedPiece;
  std::uint32_t next = 0;
  for (std::size_t i = pieces; i-- > 0;) {
    const auto part =
        value.subspan(i * kChainedPiece, std::min(kChainedPiece, value.size() - i * kChainedPiece));
    Bytes piece(kNextPiece);
    format::StoreU32(piece.data(), next);
    piece.insert(piece.end(), part.begin(), part.end());
    const MutablePage page = pages.NewPage();
    if (reference.tag == 0) reference.tag = page.Number();
    DataPage data(page.Bytes(), page.Number());
    data.SetTag(reference.tag);
    next = format::MakeRowPointer(page.Number(), data.Insert(piece));
  }
  reference.pointer = next;
  reference.AppendTo(stored);
  return stored;
}

void LongValues::Free(std::span<const std::byte> stored) {
  const LongValueReference reference = LongValueReference::Decode(stored, *m_columnName);
  if (reference.mode == LongValueReference::Mode::Inline) return;
  if (m_maps == nullptr) RaiseDamaged("the file keeps no pages for it");
  RowPages pages(*m_pager, *m_allocator, m_maps->owned, m_maps->free, data_page::kOwnerLongValues);
  std::uint32_t pointer = reference.pointer;
  while (pointer != 0) {
    const RowId row{format::RowPointerPage(pointer), format::RowPointerSlot(pointer)};
    pointer = 0;
    if (!pages.Owned().Contains(row.page)) RaiseDamaged("a piece of it lies on a page of others");
    {
      const PageHandle page = m_pager->Get(row.page);
      const DataPageView view(page.Bytes(), row.page);
      const format::RowSlot slot = view.Slot(row.slot);
      // A piece met twice was deleted the first time, so that a ring ends here.
      if (view.Owner() != data_page::kOwnerLongValues || slot.flags == data_page::kDeleted) {
        RaiseDamaged("a piece of it is missing");
      }
      if (reference.mode == LongValueReference::Mode::Chained) {
        if (slot.end - slot.begin <= kNextPiece) RaiseDamaged("a piece of it is too short");
        pointer = format::LoadU32(view.Row(slot).data());
      }
    }
    pages.Remove(row);
  }
}

}  // namespace jet
