#include "jet/file/PageStore.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"
#include "jet/file/RedoLog.h"
#include "jet/format/Bytes.h"
#include "jet/format/Rc4.h"

namespace jet {

PageStore::PageStore(std::shared_ptr<File> file, std::string name, std::shared_ptr<RedoLog> log)
    : m_file(std::move(file)), m_name(std::move(name)), m_log(std::move(log)) {}

PageStore::PageStore(std::shared_ptr<File> file, std::string name)
    : PageStore(std::move(file), std::move(name), nullptr) {}

PageStore::~PageStore() = default;

std::unique_ptr<PageStore> PageStore::Share() const {
  auto other = std::make_unique<PageStore>(m_file, m_name, m_log);
  other->m_broken = m_broken;
  other->m_unsynced = m_unsynced;
  return other;
}

void PageStore::Detach() {
  m_file.reset();
  m_log.reset();
}

std::string PageStore::Refusal() const {
  return m_log == nullptr ? std::string() : m_log->Refusal();
}

std::vector<std::byte> PageStore::ReadHeader() {
  if (m_log != nullptr && m_log->Has(0)) {
    PageBytes page;
    m_log->Read(0, page);
    return {page.begin(), page.end()};
  }
  std::vector<std::byte> header(static_cast<std::size_t>(std::min<std::uint64_t>(m_file->Size(), kPageSize)));
  m_file->Read(0, header);
  return header;
}

void PageStore::Start(std::uint32_t databaseKey) {
  m_key = databaseKey;
  if (m_log != nullptr && !m_log->IsEmpty()) {
    m_pageCount = m_log->PageCount();
    return;
  }
  const std::uint64_t size = m_file->Size();
  if (size / kPageSize > kMaxPages) {
    throw Error(ErrorNumber::FileTooLarge, "The file '" + m_name + "' is larger than 2 GiB.");
  }
  m_pageCount = static_cast<PageNumber>(size / kPageSize);
  m_endsInsidePage = size % kPageSize != 0;
}

void PageStore::UseLog(std::unique_ptr<RedoLog> log) {
  Close();
  m_log = std::move(log);
}

void PageStore::Code(PageNumber number, PageBytes& bytes) const {
  if (!IsCoded(number)) return;
  std::array<std::byte, 4> key{};
  format::StoreU32(key.data(), m_key ^ number);
  format::ApplyRc4(key, bytes);
}

void PageStore::Read(PageNumber number, PageBytes& into) {
  if (number >= m_pageCount) {
    throw Error(ErrorNumber::DamagedFile, "The file '" + m_name + "' is damaged: page " +
                                              std::to_string(number) +
                                              " is referred to but lies past its end.");
  }
  if (m_log != nullptr && m_log->Has(number)) {
    m_log->Read(number, into);
  } else {
    m_file->Read(OffsetOf(number), into);
  }
  Code(number, into);
}

void PageStore::Write(PageNumber number, const PageBytes& bytes) {
  if (!IsCoded(number)) {
    m_file->Write(OffsetOf(number), bytes);
    return;
  }
  PageBytes coded = bytes;
  Code(number, coded);
  m_file->Write(OffsetOf(number), coded);
}

void PageStore::Apply(std::span<const ChangedPage> changes, PageNumber pageCount) {
  if (!changes.empty() && m_file->IsRemoved()) {
    throw Error(ErrorNumber::FileNotFound,
                "The file '" + m_name + "' was removed while it was open and takes no more changes.");
  }
  if (!changes.empty() && m_endsInsidePage) {
    m_file->Resize(OffsetOf(m_pageCount));
    m_endsInsidePage = false;
  }
  if (m_log != nullptr && m_log->IsUsed()) {
    if (!changes.empty()) ApplyLogged(changes, pageCount);
  } else {
    ApplyAtOnce(changes);
  }
  m_pageCount = pageCount;
}

void PageStore::ApplyLogged(std::span<const ChangedPage> changes, PageNumber pageCount) {
  if (m_key == 0 && !m_log->IsEmpty()) {
    m_log->Append(changes, m_pageCount, pageCount);
  } else {
    std::deque<PageBytes> bytes;  // stay where they are
    const auto code = [&](PageNumber number, const PageBytes* page) -> const PageBytes* {
      if (page == nullptr || !IsCoded(number)) return page;
      Code(number, bytes.emplace_back(*page));
      return &bytes.back();
    };
    std::vector<ChangedPage> stored;
    for (const ChangedPage& change : changes)
      stored.push_back(
          {change.number, code(change.number, change.before), code(change.number, change.after)});
    if (m_log->IsEmpty()) AddWitnesses(stored, bytes);
    m_log->Append(stored, m_pageCount, pageCount);
  }
  if (!m_log->IsLong()) return;
  try {
    m_log->Checkpoint(*m_file);
  } catch (const std::exception&) {
    // The unit is in the log anyway. The next one tries again, and Close() reports the error.
  }
}

/// Adds pages of the file that the unit leaves as they are, as they are stored.
void PageStore::AddWitnesses(std::vector<ChangedPage>& changes, std::deque<PageBytes>& bytes) {
  if (m_witnesses == nullptr) return;
  std::vector<PageNumber> numbers = m_witnesses();
  std::sort(numbers.begin(), numbers.end());
  numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
  const std::size_t changed = changes.size();  // in the order of their numbers
  for (const PageNumber number : numbers) {
    const auto end = changes.begin() + static_cast<std::ptrdiff_t>(changed);
    const auto at = std::lower_bound(changes.begin(), end, number,
                                     [](const ChangedPage& page, PageNumber n) { return page.number < n; });
    if (number >= m_pageCount || (at != end && at->number == number)) continue;
    m_file->Read(OffsetOf(number), bytes.emplace_back());
    changes.push_back({.number = number, .before = &bytes.back()});
  }
}

void PageStore::ApplyAtOnce(std::span<const ChangedPage> changes) {
  if (m_broken) {
    throw Error(ErrorNumber::DamagedFile,
                "The file '" + m_name +
                    "' was left half written by an earlier failure and takes no more changes; "
                    "close it and check it.");
  }
  std::size_t attempted = 0;
  try {
    for (; attempted < changes.size(); ++attempted)
      Write(changes[attempted].number, *changes[attempted].after);
  } catch (...) {
    PutBack(changes.first(attempted + 1));
    throw;
  }
  m_unsynced = m_unsynced || !changes.empty();
}

void PageStore::PutBack(std::span<const ChangedPage> attempted) noexcept {
  try {
    for (const ChangedPage& change : attempted) {
      if (change.before != nullptr) Write(change.number, *change.before);
    }
    const std::uint64_t size = OffsetOf(m_pageCount);
    if (m_file->Size() != size) m_file->Resize(size);
  } catch (const std::exception&) {
    m_broken = true;  // report the original error
  }
}

void PageStore::Close() {
  if (m_file == nullptr) return;
  if (m_unsynced) m_file->Sync();
  m_unsynced = false;
  if (m_log != nullptr) m_log->Close(*m_file);
}

std::shared_ptr<File> PageStore::Release() {
  Close();
  return std::move(m_file);
}

void PageStore::CopyTo(File& other) {
  PageBytes page;
  for (PageNumber number = 0; number < m_pageCount; ++number) {
    Read(number, page);
    Code(number, page);
    other.Write(OffsetOf(number), page);
  }
}

}  // namespace jet
