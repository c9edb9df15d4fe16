#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "jet/file/File.h"
#include "jet/file/Pages.h"

namespace jet {

class RedoLog;

/// Reads whole pages of a database file and applies units of changed pages to it.
///
/// Owns the file. Every page but the header is coded with the database key, when there is one; callers see
/// plain pages only. This is the one place through which changes reach the file. With a redo log they go
/// there, and into the file at checkpoints; without one, or with one that is off, into the file at once.
class PageStore {
 public:
  /// `name` is used in messages. Start comes next.
  PageStore(std::shared_ptr<File> file, std::string name);
  PageStore(std::shared_ptr<File> file, std::string name, std::shared_ptr<RedoLog> log);
  ~PageStore();
  /// Another one for the same file and log. Only one of the two may change pages; the other one detaches.
  std::unique_ptr<PageStore> Share() const;
  /// Lets go of file and log without writing anything.
  void Detach();

  /// The header page, as far as the file has one.
  std::vector<std::byte> ReadHeader();
  /// Takes the key with which pages other than page 0 are coded; 0: they are plain. Raises FileTooLarge.
  void Start(std::uint32_t databaseKey);
  /// From here on changes go into the log; those made until then are durable.
  void UseLog(std::unique_ptr<RedoLog> log);
  /// Has a log that begins note the state of the pages that `pages()` returns, by which another state of the
  /// file is recognised when the log is replayed. They should be few, and change often.
  void UseWitnesses(std::function<std::vector<PageNumber>()> pages) { m_witnesses = std::move(pages); }
  /// See RedoLog::Refusal.
  std::string Refusal() const;
  /// Whether the name leads to the file.
  bool IsNamed(const std::string& name) const { return m_file->IsNamed(name); }

  /// Whole pages of the file.
  PageNumber PageCount() const { return m_pageCount; }
  /// Whether bytes follow the last whole page. The first change cuts them off, so the caller must make sure
  /// that they are part of a free page.
  bool EndsInsidePage() const { return m_endsInsidePage; }
  const std::string& Name() const { return m_name; }

  /// Raises DamagedFile for a page past the end, ReadFailed.
  void Read(PageNumber number, PageBytes& into);

  /// Applies all pages of a unit; the file then has `pageCount` pages. When it fails, the file is as it was
  /// and the error passed on. Should that be impossible, every later Apply is refused.
  void Apply(std::span<const ChangedPage> changes, PageNumber pageCount);

  /// Writes everything into the file, durably. What is in the log stays there when it fails.
  void Close();
  /// Closes, and hands out the file, which is locked still.
  std::shared_ptr<File> Release();

  /// Writes all pages into another file, coded as they are here.
  void CopyTo(File& other);

 private:
  void ApplyLogged(std::span<const ChangedPage> changes, PageNumber pageCount);
  void AddWitnesses(std::vector<ChangedPage>& changes, std::deque<PageBytes>& bytes);
  void ApplyAtOnce(std::span<const ChangedPage> changes);
  void Write(PageNumber number, const PageBytes& bytes);
  void PutBack(std::span<const ChangedPage> attempted) noexcept;
  bool IsCoded(PageNumber number) const { return m_key != 0 && number != 0; }
  void Code(PageNumber number, PageBytes& bytes) const;

  std::shared_ptr<File> m_file;
  std::string m_name;
  std::shared_ptr<RedoLog> m_log;
  std::function<std::vector<PageNumber>()> m_witnesses;
  std::uint32_t m_key = 0;
  PageNumber m_pageCount = 0;
  bool m_endsInsidePage = false;
  bool m_broken = false;
  bool m_unsynced = false;
};

}  // namespace jet
