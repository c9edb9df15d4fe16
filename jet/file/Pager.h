#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "jet/file/PageStore.h"

namespace jet {

class Pager;

namespace detail {
/// A page in the cache.
struct Frame {
  PageBytes bytes;
  PageNumber number = 0;
  std::uint32_t pins = 0;
  std::uint32_t level = 0;  ///< innermost change unit that has an image of the page as it was; 0: unchanged
  bool recentlyUsed = false;
  std::unique_ptr<Frame> next;  ///< of those that are gone from the file and still in use
};
}  // namespace detail

/// Keeps a page in the cache for as long as it lives. Copies are cheap. The bytes stay where they are, but
/// changes made through the Pager show in them. Of a new page whose unit was undone the bytes can still be
/// read; the page of that number, should there be one again, is another.
class PageHandle {
 public:
  PageHandle() = default;
  explicit PageHandle(detail::Frame* frame) : m_frame(frame) { ++m_frame->pins; }
  PageHandle(const PageHandle& other) : m_frame(other.m_frame) {
    if (m_frame != nullptr) ++m_frame->pins;
  }
  PageHandle(PageHandle&& other) noexcept : m_frame(std::exchange(other.m_frame, nullptr)) {}
  PageHandle& operator=(PageHandle other) noexcept {
    std::swap(m_frame, other.m_frame);
    return *this;
  }
  ~PageHandle() {
    if (m_frame != nullptr) --m_frame->pins;
  }

  explicit operator bool() const { return m_frame != nullptr; }
  PageNumber Number() const { return m_frame->number; }
  const PageBytes& Bytes() const { return m_frame->bytes; }
  const std::byte* Data() const { return m_frame->bytes.data(); }

 protected:
  detail::Frame* m_frame = nullptr;
};

/// A page that the innermost change unit may write to.
class MutablePage : public PageHandle {
 public:
  using PageHandle::PageHandle;
  PageBytes& Bytes() const { return m_frame->bytes; }
  std::byte* Data() const { return m_frame->bytes.data(); }
};

/// Pages of one open database file, through a cache of bounded size, with units of change that apply whole or
/// not at all.
///
/// Changes are made inside a ChangeUnit only, to pages in the cache; changed pages stay there until the
/// outermost unit is committed, which hands all of them to the PageStore together. Units nest: an inner one
/// that is rolled back undoes its own changes and no others. Raises DamagedFile for pages past the end,
/// ReadFailed, DiskFull, PermissionDenied, FileTooLarge.
class Pager {
 public:
  /// `cacheBytes` bounds the pages kept while they are neither changed nor in use; at least a few pages are
  /// kept.
  Pager(std::unique_ptr<PageStore> store, std::size_t cacheBytes);
  ~Pager();
  Pager(const Pager&) = delete;
  Pager& operator=(const Pager&) = delete;

  const std::string& FileName() const { return m_store->Name(); }
  /// Pages of the file, those that the current unit appended included.
  PageNumber PageCount() const { return m_pageCount; }
  /// See PageStore::EndsInsidePage.
  bool EndsInsidePage() const { return m_store->EndsInsidePage(); }

  /// The page, read from the file at most once while it is cached.
  PageHandle Get(PageNumber number) {
    if (number < m_frames.size() && m_frames[number] != nullptr) {
      m_frames[number]->recentlyUsed = true;
      return PageHandle(m_frames[number].get());
    }
    return Load(number);
  }

  /// The page, for changing. Only inside a change unit.
  MutablePage Change(PageNumber number);
  /// A new page of zeros at the end of the file. Only inside a change unit. Raises FileTooLarge.
  MutablePage Append();

  bool InUnit() const { return !m_levels.empty(); }

  /// Notes that a page of rows was given back, so that row ids into it are recognised as stale.
  void NoteFreed(PageNumber number);
  /// A moment in the life of the file, for FreedSince.
  std::uint64_t Moment() const { return m_moment; }
  /// Whether the page was given back after `moment`, whatever it holds now.
  bool FreedSince(PageNumber number, std::uint64_t moment) const {
    if (m_freed.empty()) return false;
    const auto found = m_freed.find(number);
    return found != m_freed.end() && found->second > moment;
  }

  /// See PageStore::UseLog and PageStore::Close. Not inside a change unit.
  void UseLog(std::unique_ptr<RedoLog> log);
  void Close() { m_store->Close(); }
  /// The same, and hands out the file.
  std::shared_ptr<File> Release() { return m_store->Release(); }
  /// The pages as they are in the file. Changes go through the Pager only.
  PageStore& Storage() { return *m_store; }
  /// Writes all pages as they are in the file, without changes that are under way.
  void CopyTo(File& other) { m_store->CopyTo(other); }

  /// Frames in memory, for tests of the bound.
  std::size_t CachedPages() const { return m_cached; }

 private:
  friend class ChangeUnit;

  struct Undo {
    detail::Frame* frame;
    std::unique_ptr<PageBytes> before;  // none: the page is new
    std::uint32_t previousLevel;
  };
  struct Level {
    std::vector<Undo> undos;
    std::vector<std::pair<PageNumber, std::uint64_t>> freed;  // page, and when it was freed before (0 never)
    PageNumber pageCount;
  };

  PageHandle Load(PageNumber number);
  detail::Frame& NewFrame(PageNumber number);
  void MakeRoom();
  void SaveBefore(detail::Frame& frame, bool isNew);
  std::unique_ptr<PageBytes> TakeBuffer();
  void GiveBuffer(std::unique_ptr<PageBytes> buffer) noexcept;
  void Begin();
  void Commit();
  void MakeRoomInOuter();
  void MoveToOuter() noexcept;
  void Apply();
  void Rollback() noexcept;
  void EndLevel() noexcept;
  void Discard(detail::Frame& frame) noexcept;
  void DropDiscarded() noexcept;

  std::unique_ptr<PageStore> m_store;
  std::size_t m_capacity;
  std::size_t m_evictAt;                                 // pages in the cache at which room is made again
  std::vector<std::unique_ptr<detail::Frame>> m_frames;  // by page number
  std::unique_ptr<detail::Frame> m_discarded;            // undone new pages that are still pinned, in a chain
  std::size_t m_cached = 0;
  std::size_t m_clock = 0;  // where the search for a page to evict continues
  PageNumber m_pageCount;
  std::vector<Level> m_levels;
  std::vector<std::unique_ptr<PageBytes>> m_buffers;  // kept for the next unit
  std::vector<Undo> m_undos;                          // empty; its room is kept for the next unit
  std::unordered_map<PageNumber, std::uint64_t> m_freed;
  std::uint64_t m_moment = 1;
};

/// The scope of one unit of change: Commit applies it; without Commit the destructor undoes it.
class ChangeUnit {
 public:
  explicit ChangeUnit(Pager& pager) : m_pager(&pager) { pager.Begin(); }
  ~ChangeUnit() {
    if (m_pager != nullptr) m_pager->Rollback();
  }
  ChangeUnit(const ChangeUnit&) = delete;
  ChangeUnit& operator=(const ChangeUnit&) = delete;

  /// Applies the unit: an inner one becomes part of the outer one, the outermost goes to the file. When that
  /// fails the unit is undone and the error passed on.
  void Commit() { std::exchange(m_pager, nullptr)->Commit(); }

 private:
  Pager* m_pager;
};

}  // namespace jet
