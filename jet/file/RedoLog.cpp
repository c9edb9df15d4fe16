#include "jet/file/RedoLog.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/Checksum.h"

namespace jet {
namespace {

using format::kSectorSize;

constexpr std::size_t kLeastAhead = std::size_t{64} << 10;  // zeros written ahead of the end at a time
constexpr std::size_t kMostAhead = std::size_t{1} << 20;
constexpr std::size_t kLongestWrite = std::size_t{1} << 20;  // units longer than this are written in pieces

constexpr char kUncertain[] =
    " It cannot be known whether the change is stored: opening the database again shows it.";

std::uint64_t NewSalt() {
  std::random_device device;
  return (std::uint64_t{device()} << 32) | device();
}

}  // namespace

RedoLog::RedoLog(std::shared_ptr<FileSystem> files, const std::string& databaseName, Durability durability,
                 std::uint64_t longLog)
    : m_files(std::move(files)),
      m_databaseName(databaseName),
      m_name(NameFor(m_files->RealName(databaseName))),
      m_durability(durability),
      m_longLog(longLog) {}

RedoLog::~RedoLog() = default;

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
  bool isWhole = false;
  try {
    AppendUnit(changes, pageCount);
    isWhole = true;
    if (m_durability == Durability::Full) {
      WriteAhead();
      m_file->Sync();
    }
  } catch (const Error& error) {
    ForgetUnit(changes, end, isWhole);
    if (!m_isBroken) throw;
    Error uncertain(error.Number(), error.what() + std::string(kUncertain));
    uncertain.MarkUncertain();
    throw uncertain;
  } catch (...) {
    ForgetUnit(changes, end, isWhole);
    throw;
  }
  // Nothing fails from here on: the unit is there.
  m_isSynced = m_durability == Durability::Full;
  m_pageCount = pageCount;
  ++m_sequence;
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (changes[i].after != nullptr) m_pages.find(changes[i].number)->second = m_appended[i];
  }
}

/// Takes back a unit that failed; `isWhole`: it was written, and perhaps not synced.
void RedoLog::ForgetUnit(std::span<const ChangedPage> changes, std::uint64_t end, bool isWhole) {
  m_end = end;
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
  m_appended.clear();
  std::uint64_t offset = m_end + UnitHead::kSize + changes.size() * PageHead::kSize;
  for (const ChangedPage& change : changes) {
    m_appended.push_back(Place(change, offset));
    offset += m_appended.back().hole.Written();
  }
  const auto head = format::EncodeLogUnitHead({.sequence = m_sequence + 1,
                                               .salt = m_salt,
                                               .pages = static_cast<std::uint32_t>(changes.size()),
                                               .pageCount = pageCount,
                                               .followsSyncedUnits = m_isSynced || m_sequence == 0});
  m_buffer.assign(head.begin(), head.end());
  m_buffer.resize(head.size() + changes.size() * PageHead::kSize);
  for (std::size_t i = 0; i < changes.size(); ++i) {
    const LoggedPage& page = m_appended[i];
    const auto kind = changes[i].after == nullptr ? PageHead::Kind::Witness
                      : page.isNew                ? PageHead::Kind::New
                                                  : PageHead::Kind::Changed;
    format::EncodeLogPageHead(
        {.number = changes[i].number, .kind = kind, .before = page.before, .hole = page.hole},
        std::span(m_buffer).subspan(head.size() + i * PageHead::kSize).first<PageHead::kSize>());
  }
  Checksum sum;
  sum.Add(head);
  sum.Add(std::span<const std::byte>(m_buffer).subspan(head.size()));

  const auto put = [&](std::span<const std::byte> bytes) {
    m_buffer.insert(m_buffer.end(), bytes.begin(), bytes.end());
  };
  const auto flush = [&] {
    m_file->Write(m_end, m_buffer);
    m_end += m_buffer.size();
    m_buffer.clear();
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    if (changes[i].after == nullptr) continue;
    const std::span<const std::byte> page = *changes[i].after;
    const Hole hole = m_appended[i].hole;
    for (const auto part : {page.first(hole.begin), page.subspan(hole.begin + hole.size)}) {
      put(part);
      sum.Add(part);
    }
    if (m_buffer.size() >= kLongestWrite) flush();
  }
  std::array<std::byte, sizeof(std::uint64_t)> stored;
  format::StoreU64(stored.data(), sum.Value());
  put(stored);
  flush();
}

/// What the log will have of a page, at an offset. Makes a place for it in m_pages, while that may still
/// fail.
RedoLog::LoggedPage RedoLog::Place(const ChangedPage& change, std::uint64_t offset) {
  if (change.after == nullptr) {
    return {.offset = offset,
            .hole = {.begin = 0, .size = kPageSize},
            .before = format::SumsOfSectors(*change.before)};
  }
  const auto [known, isFirst] = m_pages.try_emplace(change.number);
  LoggedPage page = known->second;
  if (isFirst) {
    page.isNew = change.before == nullptr;
    if (!page.isNew) page.before = format::SumsOfSectors(*change.before);
  }
  page.hole = HoleIn(*change.after);
  page.offset = offset;
  return page;
}

/// Keeps zeros ahead of the end. Syncing an overwrite of these zeros needs no file-size update, the slowest
/// part of a sync. The next sync is theirs too.
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
    // After a failed fsync, earlier writes may be lost, including the log header.
    if (m_pages.empty()) return Remove();
    m_file->Write(m_end, std::array<std::byte, kSectorSize>{});
    m_file->Sync();
  } catch (const std::exception&) {
    m_isBroken = true;  // report the original error
  }
}

void RedoLog::Create(PageNumber pageCount) {
  m_isLeftBehind = m_isLeftBehind && m_files->Exists(m_name);
  m_file = m_files->Open(
      m_name, {.exclusive = true, .readOnly = false, .create = !m_isLeftBehind, .like = m_databaseName});
  m_ahead = 0;
  try {
    if (m_isLeftBehind) m_file->Resize(0);
    m_isLeftBehind = false;
    WriteHeader(pageCount);
  } catch (...) {
    try {
      Remove();
    } catch (const Error&) {
      m_isLeftBehind = true;  // nothing is in it
    }
    throw;
  }
}

/// A log whose name is gone is lost with this process, and the changes that only it has.
void RedoLog::PutBackIfRemoved() {
  if (!m_file->IsRemoved()) return;
  auto file =
      m_files->Open(m_name, {.exclusive = true, .readOnly = false, .create = true, .like = m_databaseName});
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
  const format::LogHeader header{.pageCount = pageCount, .salt = NewSalt()};
  m_file->Write(0, format::EncodeLogHeader(header));
  Begin(header);
  m_isSynced = false;
}

void RedoLog::WritePages(File& database) {
  try {
    PutBackIfRemoved();
  } catch (const Error&) {
    // Checkpoint anyway, though a crash during it would not be recoverable.
  }
  // From here on the log must be able to repair the database.
  if (!m_isSynced) MarkBrokenOnFailure([&] { m_file->Sync(); });
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
  MarkBrokenOnFailure([&] {
    WriteHeader(m_pageCount);
    m_file->Sync();  // before anything is written over the units that are void now
  });
  m_isSynced = true;
  m_pages.clear();
}

template <typename Work>
void RedoLog::MarkBrokenOnFailure(Work&& work) {
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
