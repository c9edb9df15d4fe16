#include "jet/file/Pager.h"

#include <algorithm>
#include <cassert>

#include "jet/Error.h"
#include "jet/file/RedoLog.h"

namespace jet {

using detail::Frame;

namespace {
constexpr std::size_t kLeastPages = 16;
constexpr std::size_t kKeptBuffers = 64;

/// So that adding `more` elements cannot fail.
template <typename T>
void MakeRoomFor(std::vector<T>& elements, std::size_t more) {
  if (elements.capacity() - elements.size() < more)
    elements.reserve(std::max(elements.size() + more, 2 * elements.capacity()));
}
}  // namespace

Pager::Pager(std::unique_ptr<PageStore> store, std::size_t cacheBytes)
    : m_store(std::move(store)),
      m_capacity(std::max(kLeastPages, cacheBytes / kPageSize)),
      m_evictAt(m_capacity),
      m_pageCount(m_store->PageCount()) {
  m_buffers.reserve(kKeptBuffers);
}

Pager::~Pager() = default;

void Pager::UseLog(std::unique_ptr<RedoLog> log) {
  m_store->UseLog(std::move(log));
}

PageHandle Pager::Load(PageNumber number) {
  if (m_cached >= m_evictAt) MakeRoom();
  // Read before the frame is entered: a page that cannot be read leaves no trace.
  auto frame = std::make_unique<Frame>();
  frame->number = number;
  frame->recentlyUsed = true;
  m_store->Read(number, frame->bytes);
  if (m_frames.size() <= number) m_frames.resize(std::max<std::size_t>(number + 1, m_pageCount));
  m_frames[number] = std::move(frame);
  ++m_cached;
  return PageHandle(m_frames[number].get());
}

void Pager::MakeRoom() {
  // Second chance: a page used since the last visit is skipped once. Changed and pinned pages stay,
  // whatever the bound.
  for (std::size_t steps = 0; steps < 2 * m_frames.size() && m_cached >= m_capacity; ++steps) {
    m_clock = m_clock + 1 < m_frames.size() ? m_clock + 1 : 0;
    std::unique_ptr<Frame>& frame = m_frames[m_clock];
    if (frame == nullptr || frame->pins != 0 || frame->level != 0) continue;
    if (frame->recentlyUsed) {
      frame->recentlyUsed = false;
      continue;
    }
    frame.reset();
    --m_cached;
  }
  // A unit that changes more pages than the cache holds should not search them all for each further one.
  m_evictAt = m_cached < m_capacity ? m_capacity : m_cached + m_capacity / 2;
}

std::unique_ptr<PageBytes> Pager::TakeBuffer() {
  if (m_buffers.empty()) return std::make_unique<PageBytes>();
  auto buffer = std::move(m_buffers.back());
  m_buffers.pop_back();
  return buffer;
}

void Pager::GiveBuffer(std::unique_ptr<PageBytes> buffer) noexcept {
  if (buffer != nullptr && m_buffers.size() < kKeptBuffers) m_buffers.push_back(std::move(buffer));
}

void Pager::SaveBefore(Frame& frame, bool isNew) {
  const auto current = static_cast<std::uint32_t>(m_levels.size());
  assert(current > 0 && "pages are changed inside a change unit only");
  if (frame.level == current) return;
  std::unique_ptr<PageBytes> before;
  if (!isNew) {
    before = TakeBuffer();
    *before = frame.bytes;
  }
  m_levels.back().undos.push_back({&frame, std::move(before), frame.level});
  frame.level = current;
}

MutablePage Pager::Change(PageNumber number) {
  const PageHandle page = Get(number);
  Frame& frame = *m_frames[number];
  SaveBefore(frame, false);
  return MutablePage(&frame);
}

MutablePage Pager::Append() {
  if (m_pageCount >= kMaxPages) {
    throw Error(ErrorNumber::FileTooLarge, "The file '" + FileName() + "' would grow past 2 GiB.");
  }
  if (m_cached >= m_evictAt) MakeRoom();
  const PageNumber number = m_pageCount;
  if (m_frames.size() <= number) m_frames.resize(number + 1);
  auto frame = std::make_unique<Frame>();
  frame->bytes.fill(std::byte{0});
  frame->number = number;
  SaveBefore(*frame, true);
  m_frames[number] = std::move(frame);
  ++m_cached;
  ++m_pageCount;
  return MutablePage(m_frames[number].get());
}

void Pager::NoteFreed(PageNumber number) {
  assert(InUnit());
  std::uint64_t& when = m_freed[number];
  m_levels.back().freed.emplace_back(number, when);
  when = ++m_moment;
}

void Pager::Begin() {
  DropDiscarded();
  m_levels.push_back({std::move(m_undos), {}, m_pageCount});
}

void Pager::Commit() {
  const bool isInner = m_levels.size() > 1;
  try {
    isInner ? MakeRoomInOuter() : Apply();
  } catch (...) {
    Rollback();
    throw;
  }
  // Nothing fails from here on: the unit is in the file, or goes with the outer one.
  if (isInner) {
    MoveToOuter();
  } else {
    for (Undo& undo : m_levels.back().undos) {
      undo.frame->level = 0;
      undo.frame->recentlyUsed = true;
      GiveBuffer(std::move(undo.before));
    }
  }
  EndLevel();
  if (!isInner && m_cached > m_capacity) MakeRoom();
}

void Pager::MakeRoomInOuter() {
  const Level& level = m_levels.back();
  Level& outer = m_levels[m_levels.size() - 2];
  MakeRoomFor(outer.undos, level.undos.size());
  MakeRoomFor(outer.freed, level.freed.size());
}

void Pager::MoveToOuter() noexcept {
  Level& level = m_levels.back();
  Level& outer = m_levels[m_levels.size() - 2];
  const auto outerLevel = static_cast<std::uint32_t>(m_levels.size() - 1);
  for (Undo& undo : level.undos) {
    undo.frame->level = outerLevel;
    if (undo.previousLevel == outerLevel) {
      GiveBuffer(std::move(undo.before));
    } else {
      outer.undos.push_back(std::move(undo));
    }
  }
  outer.freed.insert(outer.freed.end(), level.freed.begin(), level.freed.end());
}

void Pager::Apply() {
  std::vector<Undo>& undos = m_levels.back().undos;
  std::vector<ChangedPage> changes;
  changes.reserve(undos.size());
  std::sort(undos.begin(), undos.end(),
            [](const Undo& a, const Undo& b) { return a.frame->number < b.frame->number; });
  for (const Undo& undo : undos) {
    if (undo.before != nullptr && *undo.before == undo.frame->bytes) continue;
    changes.push_back({undo.frame->number, undo.before.get(), &undo.frame->bytes});
  }
  m_store->Apply(changes, m_pageCount);
}

void Pager::Rollback() noexcept {
  Level& level = m_levels.back();
  for (auto undo = level.undos.rbegin(); undo != level.undos.rend(); ++undo) {
    Frame& frame = *undo->frame;
    frame.level = undo->previousLevel;
    if (undo->before != nullptr) {
      frame.bytes = *undo->before;
      continue;
    }
    Discard(frame);
  }
  for (auto freed = level.freed.rbegin(); freed != level.freed.rend(); ++freed) {
    if (freed->second == 0) {
      m_freed.erase(freed->first);
    } else {
      m_freed[freed->first] = freed->second;
    }
  }
  m_pageCount = level.pageCount;
  EndLevel();
}

void Pager::EndLevel() noexcept {
  std::vector<Undo>& undos = m_levels.back().undos;
  undos.clear();
  if (undos.capacity() <= kKeptBuffers) m_undos = std::move(undos);
  m_levels.pop_back();
}

void Pager::Discard(Frame& frame) noexcept {
  std::unique_ptr<Frame>& held = m_frames[frame.number];
  --m_cached;
  if (frame.pins != 0) {
    frame.next = std::move(m_discarded);
    m_discarded = std::move(held);
  }
  held.reset();
}

void Pager::DropDiscarded() noexcept {
  for (std::unique_ptr<Frame>* link = &m_discarded; *link != nullptr;) {
    if ((*link)->pins == 0) {
      *link = std::move((*link)->next);
    } else {
      link = &(*link)->next;
    }
  }
}

}  // namespace jet
