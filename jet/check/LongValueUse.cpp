#include "jet/check/LongValueUse.h"

#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/LongValueReference.h"
#include "jet/format/PageLayout.h"

namespace jet::check {

using namespace format;

namespace {

constexpr std::size_t kNextPiece = 4;  // a chained piece begins with the row pointer of the next

[[noreturn]] void RaiseDamaged(const std::string& column, const std::string& what) {
  throw Error(ErrorNumber::DamagedFile, "a value of " + column + " " + what);
}

}  // namespace

void LongValueUse::AddPages(const std::vector<PageNumber>& pages, const std::string& column) {
  for (const PageNumber number : pages) {
    if (!m_pages->Claim(number, column)) continue;
    const PageHandle page = m_pager->Get(number);
    if (LoadU8(page.Data()) != page_type::kData ||
        LoadU32(page.Data() + data_page::kOwner) != data_page::kOwnerLongValues) {
      m_findings->Add(column, "page " + std::to_string(number) + " holds no long values");
    } else {
      m_owned.emplace_back(number, column);
    }
  }
}

std::span<const std::byte> LongValueUse::Piece(const PageHandle& page, std::uint32_t pointer,
                                               const std::string& column) {
  const std::string place = PlaceOf(RowPointerPage(pointer), RowPointerSlot(pointer));
  if (!m_pages->IsOwnedBy(page.Number(), column))
    RaiseDamaged(column, "lies on a page that is not the column's, " + place);
  const DataPageView view(page.Bytes(), page.Number());
  const RowSlot slot = view.Slot(RowPointerSlot(pointer));
  if (slot.flags != data_page::kLive) RaiseDamaged(column, "has a piece that was deleted, " + place);
  if (!m_used.insert(pointer).second) RaiseDamaged(column, "has a piece that is used already, " + place);
  return view.Row(slot);
}

Bytes LongValueUse::Follow(std::span<const std::byte> stored, const std::string& column) {
  const LongValueReference reference = LongValueReference::Decode(stored, column);
  Bytes value;
  if (reference.mode == LongValueReference::Mode::Inline) {
    const auto rest = stored.subspan(LongValueReference::kSize);
    value.assign(rest.begin(), rest.end());
  }
  const bool chained = reference.mode == LongValueReference::Mode::Chained;
  // A ring meets a piece that is used already.
  for (std::uint32_t pointer = reference.pointer;
       pointer != 0 && reference.mode != LongValueReference::Mode::Inline;) {
    const PageHandle page = m_pager->Get(RowPointerPage(pointer));
    auto piece = Piece(page, pointer, column);
    pointer = 0;
    if (chained) {
      if (piece.size() < kNextPiece) RaiseDamaged(column, "has a piece that is too short");
      pointer = LoadU32(piece.data());
      piece = piece.subspan(kNextPiece);
    }
    value.insert(value.end(), piece.begin(), piece.end());
  }
  if (value.size() != reference.length) {
    RaiseDamaged(column, "has " + std::to_string(value.size()) + " bytes and says " +
                             std::to_string(reference.length));
  }
  return value;
}

void LongValueUse::Finish() {
  for (const auto& [number, column] : m_owned) {
    const PageHandle page = m_pager->Get(number);
    m_findings->Guard(column, [&, &number = number, &column = column] {
      const DataPageView view(page.Bytes(), number);
      for (std::size_t slot = 0; slot < view.SlotCount(); ++slot) {
        const bool live = view.Slot(slot).flags == data_page::kLive;
        if (live && !m_used.contains(MakeRowPointer(number, static_cast<std::uint8_t>(slot)))) {
          m_findings->Add(column, "no value uses the piece at " + PlaceOf(number, slot));
        }
      }
    });
  }
}

}  // namespace jet::check
