#include "jet/file/PageStore.h"

#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/Rc4.h"

namespace jet {

PageStore::PageStore(std::unique_ptr<File> file, std::string name)
    : m_file(std::move(file)), m_name(std::move(name)) {
  const std::uint64_t size = m_file->Size();
  if (size % kPageSize != 0) {
    throw Error(ErrorNumber::DamagedFile, "The file '" + m_name + "' is damaged: it ends inside a page.");
  }
  if (size / kPageSize > kMaxPages) {
    throw Error(ErrorNumber::FileTooLarge, "The file '" + m_name + "' is larger than 2 GiB.");
  }
  m_pageCount = static_cast<PageNumber>(size / kPageSize);
}

void PageStore::Code(PageNumber number, PageBytes& bytes) const {
  if (m_key == 0 || number == 0) return;
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
  m_file->Read(std::uint64_t{number} * kPageSize, into);
  Code(number, into);
}

void PageStore::Write(PageNumber number, const PageBytes& bytes) {
  if (m_key == 0 || number == 0) {
    m_file->Write(std::uint64_t{number} * kPageSize, bytes);
    return;
  }
  PageBytes coded = bytes;
  Code(number, coded);
  m_file->Write(std::uint64_t{number} * kPageSize, coded);
}

void PageStore::Apply(std::span<const ChangedPage> changes, PageNumber pageCount) {
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
  m_pageCount = pageCount;
  m_unsynced = m_unsynced || !changes.empty();
}

void PageStore::PutBack(std::span<const ChangedPage> attempted) noexcept {
  try {
    for (const ChangedPage& change : attempted) {
      if (change.before != nullptr) Write(change.number, *change.before);
    }
    const std::uint64_t size = std::uint64_t{m_pageCount} * kPageSize;
    if (m_file->Size() != size) m_file->Resize(size);
  } catch (const std::exception&) {
    m_broken = true;  // the first error is the one that the caller is told
  }
}

void PageStore::Sync() {
  if (!m_unsynced) return;
  m_file->Sync();
  m_unsynced = false;
}

}  // namespace jet
