#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "jet/file/File.h"
#include "jet/format/PageLayout.h"

namespace jet {

/// Number of a page of the file; page 0 is the database header.
using PageNumber = std::uint32_t;

using format::kPageSize;
/// A database file never passes 2 GiB.
inline constexpr PageNumber kMaxPages = (std::uint32_t{1} << 31) / kPageSize;

using PageBytes = std::array<std::byte, kPageSize>;

/// One page of a unit of changes, as it was before the unit and as it is after it.
struct ChangedPage {
  PageNumber number = 0;
  const PageBytes* before = nullptr;  ///< none: the page is new at the end of the file
  const PageBytes* after = nullptr;
};

/// Reads whole pages of a database file and applies units of changed pages to it.
///
/// Owns the file. Every page but the header is coded with the database key, when there is one; callers see
/// plain pages only. This is the one place through which changes reach the file, so that whatever makes a
/// unit safe against a crash belongs here and nowhere else.
class PageStore {
 public:
  /// `name` is used in messages. Raises DamagedFile when the file ends inside a page.
  PageStore(std::unique_ptr<File> file, std::string name);

  /// Sets the key with which pages other than page 0 are coded; 0: they are plain.
  void SetKey(std::uint32_t databaseKey) { m_key = databaseKey; }

  PageNumber PageCount() const { return m_pageCount; }
  const std::string& Name() const { return m_name; }

  /// Raises DamagedFile for a page past the end, ReadFailed.
  void Read(PageNumber number, PageBytes& into);

  /// Writes all pages of a unit; the file then has `pageCount` pages. When a write fails, what was written is
  /// put back and the error passed on. Should even that fail, the file is left as it is and every later Apply
  /// is refused.
  void Apply(std::span<const ChangedPage> changes, PageNumber pageCount);

  /// When it returns, everything applied survives a power cut.
  void Sync();

 private:
  void Write(PageNumber number, const PageBytes& bytes);
  void PutBack(std::span<const ChangedPage> attempted) noexcept;
  void Code(PageNumber number, PageBytes& bytes) const;

  std::unique_ptr<File> m_file;
  std::string m_name;
  std::uint32_t m_key = 0;
  PageNumber m_pageCount = 0;
  bool m_broken = false;
  bool m_unsynced = false;
};

}  // namespace jet
