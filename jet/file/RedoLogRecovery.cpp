// Reading a log that was left beside its database file.

#include <algorithm>
#include <bitset>
#include <cstring>
#include <utility>

#include "jet/Error.h"
#include "jet/file/RedoLog.h"
#include "jet/format/Bytes.h"
#include "jet/format/Checksum.h"

namespace jet {
namespace {

using format::kPageSectors;
using format::kSectorSize;

bool AllZero(std::span<const std::byte> bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::byte b) { return b == std::byte{0}; });
}

}  // namespace

void RedoLog::Recover(File& database, bool readOnly) {
  if (!OpenLeft(readOnly)) return;
  std::uint32_t lost = 0;
  try {
    if (ReadHeader()) ReadUnits();
    if (!m_pages.empty()) CheckBelongs(database);
    lost = LostUnits();
    m_earlier.clear();
    m_witnesses.clear();
    if (lost > 0) KeepDamaged(lost, database);
  } catch (...) {
    m_pages.clear();
    m_file.reset();
    throw;
  }
  if (m_isReadOnly) return;
  try {
    Close(database);
  } catch (const Error& error) {
    m_refusal = error.what();
    m_isReadOnly = true;
  }
}

/// Opens the log that was left, if there is one that others do not hold.
bool RedoLog::OpenLeft(bool readOnly) {
  if (!m_files->Exists(m_name)) FindBesideLink();
  if (!m_files->Exists(m_name)) return false;
  const auto open = [&](bool forReading) {
    m_file = m_files->Open(m_name, {.exclusive = !readOnly, .readOnly = forReading, .create = false});
    m_isReadOnly = forReading;
  };
  try {
    try {
      open(readOnly);
    } catch (const Error& error) {
      if (readOnly || error.Number() != ErrorNumber::PermissionDenied) throw;
      open(true);
      m_refusal = error.what();
    }
    return true;
  } catch (const Error& error) {
    const bool isHeld =
        error.Number() == ErrorNumber::FileInUse || error.Number() == ErrorNumber::FileHeldExclusively;
    if (error.Number() == ErrorNumber::FileNotFound || (readOnly && isHeld)) return false;
    throw;
  }
}

/// The log may have been made when the file was open by another of its names.
void RedoLog::FindBesideLink() {
  for (const std::string& other : m_files->OtherNames(m_databaseName)) {
    if (m_files->Exists(NameFor(other))) m_name = NameFor(other);
  }
}

bool RedoLog::ReadHeader() {
  std::array<std::byte, kSectorSize> sector{};
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(m_file->Size(), sector.size()));
  const std::span<std::byte> there = std::span(sector).first(size);
  m_file->Read(0, there);
  // A log that was just being made when the machine stopped: nothing is in it yet.
  if (AllZero(sector) || (size < sector.size() && format::BeginsLikeLogHeader(there))) return false;
  const std::optional<format::LogHeader> header = format::DecodeLogHeader(sector);
  if (!header || header->pageCount > kMaxPages) {
    throw Error(ErrorNumber::DamagedFile,
                "The log '" + m_name +
                    "' is damaged or of another version. To go on with the database as it is, without the "
                    "changes in the log, remove the log.");
  }
  Begin(*header);
  return true;
}

void RedoLog::Begin(const format::LogHeader& header) {
  m_basePageCount = m_pageCount = header.pageCount;
  m_salt = header.salt;
  m_sequence = 0;
  m_end = kSectorSize;
}

void RedoLog::ReadUnits() {
  // Whatever is not a whole unit, in its place and with the right checksum, is the end of the log.
  const std::uint64_t size = m_file->Size();
  std::uint64_t bytesRead = 0;
  for (;;) {
    const std::optional<Unit> unit = ReadUnit(m_end, size, bytesRead);
    if (!unit || unit->head.sequence != m_sequence + 1 || unit->head.pageCount < m_pageCount) return;
    AddUnit(*unit);
  }
}

/// The unit that begins there, if it is one of this log and whole; adds what was read of the file.
std::optional<RedoLog::Unit> RedoLog::ReadUnit(std::uint64_t begin, std::uint64_t size,
                                               std::uint64_t& bytesRead) {
  std::uint64_t at = begin;
  Checksum sum;
  const auto read = [&](std::span<std::byte> into) {
    if (size - at < into.size()) return false;
    m_file->Read(at, into);
    at += into.size();
    bytesRead += into.size();
    return true;
  };
  std::array<std::byte, UnitHead::kSize> head;
  if (!read(head)) return std::nullopt;
  const std::optional<UnitHead> decoded = format::DecodeLogUnitHead(head);
  if (!decoded || decoded->salt != m_salt || decoded->pageCount > kMaxPages ||
      decoded->pages > decoded->pageCount || (size - at) / PageHead::kSize < decoded->pages) {
    return std::nullopt;
  }
  m_buffer.resize(decoded->pages * PageHead::kSize);
  if (!read(m_buffer)) return std::nullopt;
  sum.Add(head);
  sum.Add(m_buffer);

  Unit unit;
  unit.head = *decoded;
  unit.pages.reserve(decoded->pages);
  PageBytes page;
  for (std::size_t i = 0; i < decoded->pages; ++i) {
    const auto pageHead = format::DecodeLogPageHead(
        std::span<const std::byte>(m_buffer).subspan(i * PageHead::kSize).first<PageHead::kSize>());
    if (!pageHead || pageHead->number >= decoded->pageCount) return std::nullopt;
    unit.pages.emplace_back(*pageHead, at);
    if (pageHead->kind == PageHead::Kind::Witness) continue;
    const auto written = std::span(page).first(pageHead->hole.Written());
    if (!read(written)) return std::nullopt;
    sum.Add(written.first(pageHead->hole.begin));
    sum.Add(written.subspan(pageHead->hole.begin));
  }
  std::array<std::byte, sizeof(std::uint64_t)> stored;
  if (!read(stored) || format::LoadU64(stored.data()) != sum.Value()) return std::nullopt;
  unit.end = at;
  return unit;
}

void RedoLog::AddUnit(const Unit& unit) {
  for (const auto& [head, offset] : unit.pages) {
    if (head.kind == PageHead::Kind::Witness) {
      m_witnesses[head.number] = head.before;
      continue;
    }
    const LoggedPage logged{.offset = offset,
                            .hole = head.hole,
                            .isNew = head.kind == PageHead::Kind::New,
                            .before = head.before};
    const auto [known, isFirst] = m_pages.try_emplace(head.number, logged);
    if (!isFirst) m_earlier.emplace(head.number, std::exchange(known->second, logged));
  }
  m_pageCount = unit.head.pageCount;
  m_sequence = unit.head.sequence;
  m_end = unit.end;
}

/// Counts the units behind the end of the log, if some of them are whole: then a place between is damaged.
///
/// A power cut may leave such a gap between units that were not synced one by one. That is no damage, but
/// allowed by the durability.
std::uint32_t RedoLog::LostUnits() {
  constexpr std::size_t kBlock = std::size_t{64} << 10;
  if (m_end == 0) return 0;
  const std::uint64_t size = m_file->Size();
  std::uint32_t last = m_sequence;
  bool isDamage = false;
  std::uint64_t bytesRead = 0;  // bounds the work on a log that was made to be slow
  std::vector<std::byte> block;
  for (std::uint64_t at = m_end; size - at >= UnitHead::kSize && bytesRead <= 4 * size;) {
    const std::uint64_t begin = at;
    block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(size - at, kBlock)));
    m_file->Read(begin, block);
    // A mark may lie across the end of a block.
    at += block.size() < kBlock ? block.size() : kBlock - (UnitHead::kMarkSize - 1);
    for (auto from = block.begin(); bytesRead <= 4 * size;) {
      const auto mark = std::search(from, block.end(), UnitHead::kMark.begin(), UnitHead::kMark.end());
      if (mark == block.end()) break;
      from = mark + 1;
      const auto unit = ReadUnit(begin + static_cast<std::uint64_t>(mark - block.begin()), size, bytesRead);
      if (!unit) continue;
      at = unit->end;
      if (unit->head.sequence > last) {
        last = unit->head.sequence;
        isDamage = isDamage || unit->head.followsSyncedUnits;
      }
      break;
    }
  }
  return isDamage ? last - m_sequence : 0;
}

/// Replays what stands before the damaged place, and keeps the log under another name.
void RedoLog::KeepDamaged(std::uint32_t lost, File& database) {
  const std::string changes = lost == 1 ? "1 change" : std::to_string(lost) + " changes";
  const std::string damaged = "The log '" + m_name + "' of '" + m_databaseName + "' is damaged: ";
  if (m_isReadOnly) {
    throw Error(ErrorNumber::DamagedFile,
                damaged + changes + " in it cannot be read. Open the database for writing to go on without.");
  }
  std::string kept = m_name + "-damaged";
  for (int i = 2; m_files->Exists(kept); ++i)
    kept = m_name + "-damaged-" + std::to_string(i);
  try {
    if (!m_pages.empty()) WritePages(database);
    m_file.reset();
    m_files->Replace(m_name, kept, {});
  } catch (const Error& error) {
    throw Error(ErrorNumber::DamagedFile,
                damaged + changes +
                    " in it are lost. The database cannot be opened before the log has "
                    "another name, and that failed. " +
                    error.what());
  }
  throw Error(ErrorNumber::DamagedFile,
              damaged + changes + " in it are lost, those before are in the database. The log was kept as '" +
                  kept + "'. Open the database again to go on.");
}

void RedoLog::CheckBelongs(File& database) {
  const std::uint64_t size = database.Size();
  if (size < OffsetOf(m_basePageCount) || size > OffsetOf(m_pageCount)) RaiseDoesNotBelong();
  PageBytes stored;
  for (const auto& [number, page] : m_pages) {
    if (OffsetOf(number) >= size) continue;
    const auto there = std::span(stored).first(
        static_cast<std::size_t>(std::min<std::uint64_t>(kPageSize, size - OffsetOf(number))));
    database.Read(OffsetOf(number), there);
    if (!Belongs(number, page, there)) RaiseDoesNotBelong();
  }
  for (const auto& [number, before] : m_witnesses) {
    if (m_pages.contains(number)) continue;
    if (OffsetOf(number) + kPageSize > size) RaiseDoesNotBelong();
    database.Read(OffsetOf(number), stored);
    if (format::SumsOfSectors(stored) != before) RaiseDoesNotBelong();
  }
}

bool RedoLog::Belongs(PageNumber number, const LoggedPage& page, std::span<const std::byte> stored) {
  // Sector by sector, because a checkpoint that was broken off may have left a page half written; and as any
  // unit left it, because further units may have come after a checkpoint that failed.
  const std::size_t sectors = (stored.size() + kSectorSize - 1) / kSectorSize;
  const auto sectorAt = [&](std::size_t i) {
    return stored.subspan(i * kSectorSize).first(std::min(kSectorSize, stored.size() - i * kSectorSize));
  };
  std::bitset<kPageSectors> isKnown;
  for (std::size_t i = 0; i < sectors; ++i)
    isKnown[i] = page.isNew ? AllZero(sectorAt(i)) : format::SumOfSector(sectorAt(i)) == page.before[i];
  const auto compare = [&](const LoggedPage& logged) {
    PageBytes state;
    Read(logged, state);
    for (std::size_t i = 0; i < sectors; ++i) {
      if (std::memcmp(sectorAt(i).data(), state.data() + i * kSectorSize, sectorAt(i).size()) == 0)
        isKnown.set(i);
    }
  };
  if (isKnown.count() < sectors) compare(page);
  for (auto [at, end] = m_earlier.equal_range(number); at != end && isKnown.count() < sectors; ++at)
    compare(at->second);
  return isKnown.count() == sectors;
}

void RedoLog::RaiseDoesNotBelong() const {
  throw Error(ErrorNumber::LogDoesNotBelong,
              "The log '" + m_name + "' does not belong to '" + m_databaseName +
                  "' as it is now: another program has changed the database since, or it is a copy of "
                  "another time. To go on with the database as it is, without the changes in the log, remove "
                  "the log; to keep them, put the database "
                  "file back that was beside it.");
}

}  // namespace jet
