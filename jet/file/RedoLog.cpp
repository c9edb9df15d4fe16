#include "jet/file/RedoLog.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <random>
#include <utility>

#include "jet/Error.h"
#include "jet/file/Checksum.h"

namespace jet {
namespace {

constexpr char kMark[16] = "jet redo log";
constexpr std::uint32_t kVersion = 2;
constexpr std::uint32_t kUnitMark = 0x54494E55;
constexpr std::size_t kLeastAhead = std::size_t{64} << 10;  // zeros written ahead of the end at a time
constexpr std::size_t kMostAhead = std::size_t{1} << 20;
constexpr std::size_t kLongestWrite = std::size_t{1} << 20;  // units longer than this are written in pieces

constexpr char kUncertain[] =
    " It cannot be known whether the change is stored: opening the database again shows it.";

template <typename T>
std::span<const std::byte> BytesOf(const T& value) {
  return std::as_bytes(std::span(&value, 1));
}

std::uint64_t OffsetOf(PageNumber number) {
  return std::uint64_t{number} * kPageSize;
}

bool AllZero(std::span<const std::byte> bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::byte b) { return b == std::byte{0}; });
}

std::uint32_t SumOf(std::span<const std::byte> sector) {
  Checksum sum;
  sum.Add(sector);
  return static_cast<std::uint32_t>(sum.Value());
}

std::uint64_t NewSalt() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

}  // namespace

struct RedoLog::Header {
  char mark[sizeof kMark];
  std::uint32_t version;
  std::uint32_t pageSize;
  std::uint32_t pageCount;
  std::uint32_t unused;
  std::uint64_t salt;
  std::uint64_t sum;  // of what stands before it

  std::uint64_t Sum() const {
    Checksum checksum;
    checksum.Add(BytesOf(*this).first(offsetof(Header, sum)));
    return checksum.Value();
  }
};

struct RedoLog::UnitHead {
  std::uint32_t mark;
  std::uint32_t sequence;
  std::uint32_t pages;
  std::uint32_t pageCount;
};

struct RedoLog::PageHead {
  std::uint32_t number;
  std::uint32_t isNew;
  SectorSums before;
  Hole hole;
};

RedoLog::RedoLog(std::shared_ptr<FileSystem> files, const std::string& databaseName, Durability durability,
                 std::uint64_t longLog)
    : m_files(std::move(files)),
      m_databaseName(databaseName),
      m_name(NameFor(m_files->RealName(databaseName))),
      m_durability(durability),
      m_longLog(longLog) {}

RedoLog::~RedoLog() = default;

RedoLog::SectorSums RedoLog::SumsOf(const PageBytes& page) {
  SectorSums sums;
  for (std::size_t i = 0; i < kSectors; ++i)
    sums[i] = SumOf(std::span(page).subspan(i * kSectorSize, kSectorSize));
  return sums;
}

RedoLog::Hole RedoLog::HoleIn(const PageBytes& page) {
  constexpr std::size_t kBlock = 64;
  Hole longest;
  Hole hole;
  for (std::size_t at = 0; at < kPageSize; at += kBlock) {
    std::uint64_t words[kBlock / 8];
    std::memcpy(words, page.data() + at, sizeof words);
    std::uint64_t bits = 0;
    for (const std::uint64_t word : words)
      bits |= word;
    if (bits != 0) {
      hole = {};
      continue;
    }
    if (hole.size == 0) hole.begin = static_cast<std::uint16_t>(at);
    hole.size = static_cast<std::uint16_t>(hole.size + kBlock);
    if (hole.size > longest.size) longest = hole;
  }
  return longest;
}

void RedoLog::AddWritten(std::span<const std::byte> written, Hole hole, Checksum& sum) {
  sum.Add(written.first(hole.begin));
  sum.Add(written.subspan(hole.begin));
}

void RedoLog::Recover(File& database, bool readOnly) {
  if (!m_files->Exists(m_name)) return;
  try {
    m_file = m_files->Open(m_name, {.exclusive = !readOnly, .readOnly = readOnly, .create = false});
  } catch (const Error& error) {
    const bool isHeld =
        error.Number() == ErrorNumber::FileInUse || error.Number() == ErrorNumber::FileHeldExclusively;
    if (error.Number() == ErrorNumber::FileNotFound || (readOnly && isHeld)) return;
    throw;
  }
  try {
    if (ReadHeader()) ReadUnits();
    if (!m_pages.empty()) CheckBelongs(database);
    m_earlier.clear();
  } catch (...) {
    m_pages.clear();
    m_file.reset();
    throw;
  }
  m_isReadOnly = readOnly;
  Close(database);
}

bool RedoLog::ReadHeader() {
  std::array<std::byte, kSectorSize> sector{};
  const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(m_file->Size(), sector.size()));
  m_file->Read(0, std::span(sector).first(size));
  Header header;
  std::memcpy(&header, sector.data(), sizeof header);
  // A log that was just being made when the machine stopped: nothing is in it yet.
  const bool isMarked = std::memcmp(header.mark, kMark, std::min(size, sizeof kMark)) == 0;
  if (AllZero(sector) || (isMarked && size < sector.size())) return false;
  if (!isMarked || header.version != kVersion || header.pageSize != kPageSize ||
      header.pageCount > kMaxPages || header.sum != header.Sum()) {
    throw Error(ErrorNumber::DamagedFile,
                "The log '" + m_name +
                    "' is damaged or of another version. To go on with the database as it is, without the "
                    "changes in the log, remove the log.");
  }
  m_basePageCount = m_pageCount = header.pageCount;
  m_sum = header.sum;
  m_sequence = 0;
  m_end = kSectorSize;
  return true;
}

void RedoLog::ReadUnits() {
  const std::uint64_t size = m_file->Size();
  while (ReadUnit(size)) {
  }
}

bool RedoLog::ReadUnit(std::uint64_t size) {
  // Whatever is not a whole unit, in its place and with the right checksum, is the end of the log.
  std::uint64_t at = m_end;
  const auto read = [&](std::span<std::byte> into) {
    if (size - at < into.size()) return false;
    m_file->Read(at, into);
    at += into.size();
    return true;
  };
  UnitHead head;
  if (!read(std::as_writable_bytes(std::span(&head, 1)))) return false;
  if (head.mark != kUnitMark || head.sequence != m_sequence + 1 || head.pages > head.pageCount ||
      head.pageCount > kMaxPages || head.pageCount < m_pageCount) {
    return false;
  }
  if ((size - at) / sizeof(PageHead) < head.pages) return false;
  std::vector<PageHead> pageHeads(head.pages);
  if (!read(std::as_writable_bytes(std::span(pageHeads)))) return false;
  Checksum sum(m_sum);
  sum.Add(BytesOf(head));
  sum.Add(std::as_bytes(std::span(pageHeads)));

  std::vector<std::pair<PageNumber, LoggedPage>> pages;
  pages.reserve(head.pages);
  PageBytes page;
  for (const PageHead& pageHead : pageHeads) {
    if (pageHead.number >= head.pageCount || !pageHead.hole.Fits()) return false;
    pages.push_back({pageHead.number, {at, pageHead.hole, pageHead.isNew != 0, pageHead.before}});
    const auto written = std::span(page).first(pageHead.hole.Written());
    if (!read(written)) return false;
    AddWritten(written, pageHead.hole, sum);
  }
  std::uint64_t stored = 0;
  if (!read(std::as_writable_bytes(std::span(&stored, 1))) || stored != sum.Value()) return false;

  for (const auto& [number, logged] : pages) {
    const auto [known, isFirst] = m_pages.try_emplace(number, logged);
    if (!isFirst) m_earlier.emplace(number, std::exchange(known->second, logged));
  }
  m_pageCount = head.pageCount;
  m_sequence = head.sequence;
  m_sum = stored;
  m_end = at;
  return true;
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
}

bool RedoLog::Belongs(PageNumber number, const LoggedPage& page, std::span<const std::byte> stored) {
  // Sector by sector, because a checkpoint that was broken off may have left a page half written; and as any
  // unit left it, because further units may have come after a checkpoint that failed.
  const std::size_t sectors = (stored.size() + kSectorSize - 1) / kSectorSize;
  const auto sectorAt = [&](std::size_t i) {
    return stored.subspan(i * kSectorSize).first(std::min(kSectorSize, stored.size() - i * kSectorSize));
  };
  std::bitset<kSectors> isKnown;
  for (std::size_t i = 0; i < sectors; ++i)
    isKnown[i] = page.isNew ? AllZero(sectorAt(i)) : SumOf(sectorAt(i)) == page.before[i];
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
  throw Error(
      ErrorNumber::LogDoesNotBelong,
      "The log '" + m_name + "' does not belong to '" + m_databaseName +
          "' as it is now: another program has changed the database since. To go on with the database "
          "as it is, without the changes in the log, remove the log; to keep them, put the database "
          "file back that was beside it.");
}

void RedoLog::Read(PageNumber number, PageBytes& into) {
  Read(m_pages.at(number), into);
}

void RedoLog::Read(const LoggedPage& page, PageBytes& into) {
  const std::size_t written = page.hole.Written();
  m_file->Read(page.offset, std::span(into).first(written));
  std::byte* const hole = into.data() + page.hole.begin;
  std::memmove(hole + page.hole.size, hole, written - page.hole.begin);
  std::memset(hole, 0, page.hole.size);
}

void RedoLog::Append(std::span<const ChangedPage> changes, PageNumber oldPageCount, PageNumber pageCount) {
  if (m_isBroken) {
    throw Error(ErrorNumber::ReadFailed, "The log '" + m_name + "' could not be written earlier, and '" +
                                             m_databaseName +
                                             "' takes no more changes. Close it and open it again.");
  }
  m_file == nullptr ? Create(oldPageCount) : PutBackIfRemoved();
  const std::uint64_t end = m_end;
  const std::uint64_t sum = m_sum;
  bool isWhole = false;
  try {
    AppendUnit(changes, pageCount);
    isWhole = true;
    if (m_durability == Durability::Full) {
      WriteAhead();
      m_file->Sync();
    }
  } catch (const Error& error) {
    ForgetUnit(changes, end, sum, isWhole);
    if (!m_isBroken) throw;
    Error uncertain(error.Number(), error.what() + std::string(kUncertain));
    uncertain.MarkUncertain();
    throw uncertain;
  } catch (...) {
    ForgetUnit(changes, end, sum, isWhole);
    throw;
  }
  // Nothing fails from here on: the unit is there.
  m_isSynced = m_durability == Durability::Full;
  m_pageCount = pageCount;
  ++m_sequence;
  for (std::size_t i = 0; i < changes.size(); ++i)
    m_pages.find(changes[i].number)->second = m_appended[i];
}

/// Takes back a unit that failed; `isWhole`: it was written, and perhaps not synced.
void RedoLog::ForgetUnit(std::span<const ChangedPage> changes, std::uint64_t end, std::uint64_t sum,
                         bool isWhole) {
  m_end = end;
  m_sum = sum;
  ForgetUnwritten(changes);
  if (isWhole) Void();
}

/// Takes the places out again that a unit made for its pages.
void RedoLog::ForgetUnwritten(std::span<const ChangedPage> changes) {
  for (const ChangedPage& change : changes) {
    const auto found = m_pages.find(change.number);
    if (found != m_pages.end() && found->second.offset == 0) m_pages.erase(found);
  }
}

void RedoLog::AppendUnit(std::span<const ChangedPage> changes, PageNumber pageCount) {
  Checksum sum(m_sum);
  m_buffer.clear();
  const auto put = [&](std::span<const std::byte> bytes) {
    const std::size_t at = m_buffer.size();
    m_buffer.resize(at + bytes.size());
    std::memcpy(m_buffer.data() + at, bytes.data(), bytes.size());
  };
  const auto flush = [&] {
    m_file->Write(m_end, m_buffer);
    m_end += m_buffer.size();
    m_buffer.clear();
  };
  const UnitHead head{.mark = kUnitMark,
                      .sequence = m_sequence + 1,
                      .pages = static_cast<std::uint32_t>(changes.size()),
                      .pageCount = pageCount};
  put(BytesOf(head));
  m_appended.clear();
  std::uint64_t offset = m_end + sizeof head + changes.size() * sizeof(PageHead);
  for (const ChangedPage& change : changes) {
    const auto [known, isFirst] = m_pages.try_emplace(change.number);  // while that may fail still
    LoggedPage page = known->second;
    if (isFirst) {
      page.isNew = change.before == nullptr;
      if (!page.isNew) page.before = SumsOf(*change.before);
    }
    page.hole = HoleIn(*change.after);
    page.offset = offset;
    offset += page.hole.Written();
    m_appended.push_back(page);
    put(BytesOf(PageHead{
        .number = change.number, .isNew = page.isNew ? 1u : 0u, .before = page.before, .hole = page.hole}));
  }
  sum.Add(BytesOf(head));
  sum.Add(std::span<const std::byte>(m_buffer).subspan(sizeof head));
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const std::span<const std::byte> page = *changes[i].after;
    const Hole hole = m_appended[i].hole;
    const std::size_t begin = m_buffer.size();
    put(page.first(hole.begin));
    put(page.subspan(hole.begin + hole.size));
    AddWritten(std::span<const std::byte>(m_buffer).subspan(begin), hole, sum);
    if (m_buffer.size() >= kLongestWrite) flush();
  }
  m_sum = sum.Value();
  put(BytesOf(m_sum));
  flush();
}

/// Keeps zeros ahead of the end. To sync what is written over them, the system need not note a new size of
/// the file, which takes it longer than all the rest. The next sync is theirs too.
void RedoLog::WriteAhead() {
  if (m_end <= m_ahead) return;
  const auto size = std::clamp<std::uint64_t>(m_end, kLeastAhead, kMostAhead);
  try {
    m_buffer.assign(static_cast<std::size_t>(size), std::byte{0});
    m_file->Write(m_end, m_buffer);
    m_ahead = m_end + size;
  } catch (const std::exception&) {
    m_ahead = m_end;  // there is no room for more than units: go on without
  }
}

/// Makes sure that the unit which was just written, but perhaps not to the disk, is not taken for one later.
void RedoLog::Void() {
  try {
    // A sync that fails may have dropped what was written for good, the header of a new log too.
    if (m_pages.empty()) return Remove();
    m_file->Write(m_end, std::array<std::byte, kSectorSize>{});
    m_file->Sync();
  } catch (const std::exception&) {
    m_isBroken = true;  // the first error is the one that the caller is told
  }
}

void RedoLog::Create(PageNumber pageCount) {
  m_file = m_files->Open(m_name, {.exclusive = true, .readOnly = false, .create = true});
  m_ahead = 0;
  try {
    WriteHeader(pageCount);
  } catch (...) {
    try {
      Remove();
    } catch (const Error&) {
      // What is left of it is empty.
    }
    throw;
  }
}

/// A log whose name is gone is lost with this process, and the changes that only it has.
void RedoLog::PutBackIfRemoved() {
  if (!m_file->IsRemoved()) return;
  auto file = m_files->Open(m_name, {.exclusive = true, .readOnly = false, .create = true});
  try {
    for (std::uint64_t at = 0; at < m_end; at += m_buffer.size()) {
      m_buffer.resize(static_cast<std::size_t>(std::min<std::uint64_t>(m_end - at, kLongestWrite)));
      m_file->Read(at, m_buffer);
      file->Write(at, m_buffer);
    }
    file->Sync();
  } catch (...) {
    file.reset();
    m_files->Remove(m_name);
    throw;
  }
  m_file = std::move(file);
  m_ahead = m_end;
}

void RedoLog::WriteHeader(PageNumber pageCount) {
  Header header{};
  std::memcpy(header.mark, kMark, sizeof kMark);
  header.version = kVersion;
  header.pageSize = kPageSize;
  header.pageCount = pageCount;
  header.salt = NewSalt();
  header.sum = header.Sum();
  std::array<std::byte, kSectorSize> sector{};
  std::memcpy(sector.data(), &header, sizeof header);
  m_file->Write(0, sector);
  m_basePageCount = m_pageCount = pageCount;
  m_sum = header.sum;
  m_sequence = 0;
  m_end = kSectorSize;
  m_isSynced = false;
}

void RedoLog::WritePages(File& database) {
  try {
    PutBackIfRemoved();
  } catch (const Error&) {
    // Better a checkpoint that no crash may interrupt than none.
  }
  // From here on the log must be able to repair the database.
  if (!m_isSynced) UnlessItFails([&] { m_file->Sync(); });
  m_isSynced = true;
  std::vector<PageNumber> numbers;
  numbers.reserve(m_pages.size());
  for (const auto& page : m_pages)
    numbers.push_back(page.first);
  std::sort(numbers.begin(), numbers.end());
  PageBytes page;
  for (std::size_t i = 0; i < numbers.size();) {
    const PageNumber first = numbers[i];
    m_buffer.clear();
    for (; i < numbers.size() && numbers[i] - first == m_buffer.size() / kPageSize &&
           m_buffer.size() < kLongestWrite;
         ++i) {
      Read(numbers[i], page);
      m_buffer.insert(m_buffer.end(), page.begin(), page.end());
    }
    database.Write(OffsetOf(first), m_buffer);
  }
  database.Sync();
}

void RedoLog::Checkpoint(File& database) {
  if (m_pages.empty()) return;
  WritePages(database);
  UnlessItFails([&] {
    WriteHeader(m_pageCount);
    m_file->Sync();  // before anything is written over the units that are void now
  });
  m_isSynced = true;
  m_pages.clear();
}

template <typename Work>
void RedoLog::UnlessItFails(Work&& work) {
  try {
    work();
  } catch (...) {
    m_isBroken = true;
    throw;
  }
}

void RedoLog::Close(File& database) {
  if (m_isReadOnly || (m_file == nullptr && !m_isBroken)) return;
  if (!m_pages.empty()) {
    if (database.IsRemoved()) {
      throw Error(ErrorNumber::FileNotFound,
                  "The file '" + m_databaseName +
                      "' was removed while it was open. Its last changes are in '" + m_name +
                      "' and come back when a copy of the file, as it was when it was opened, is put in its "
                      "place.");
    }
    WritePages(database);
  }
  Remove();
}

void RedoLog::Remove() {
  m_pages.clear();
  m_file.reset();
  m_files->Remove(m_name);
}

}  // namespace jet
