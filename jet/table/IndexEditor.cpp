#include "jet/table/IndexEditor.h"

#include <algorithm>
#include <cassert>
#include <span>
#include <string>
#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"

namespace jet {

using format::EntryBytes;
using format::EntryPlace;
using format::EntrySpans;
using format::IndexPage;
using format::IndexPageView;
using namespace format::index_page;

namespace {

// Two entries of a branch fit a page, or it could not be split.
constexpr std::size_t kMaxEntry = kCapacity / 2 - kChildBytes;

// Where to cut a list of entries so that both parts take about the same room; at least one entry on each
// side.
template <typename Entries, typename SizeOf>
std::size_t MiddleOf(const Entries& entries, SizeOf sizeOf) {
  std::size_t total = 0;
  for (const auto& entry : entries)
    total += sizeOf(entry);
  std::size_t before = 0;
  std::size_t cut = 0;
  while (cut + 1 < entries.size() && (cut == 0 || 2 * (before + sizeOf(entries[cut])) <= total)) {
    before += sizeOf(entries[cut++]);
  }
  return cut;
}

bool HasKeyOf(const IndexPageView& page, EntryPlace place, const EntryBytes& entry) {
  return page.Length(place) == entry.size() &&
         page.BeginsWith(place, std::span(entry).first(entry.size() - kRowBytes));
}

// Whether neither entry beside `place` has the key of `entry`, which goes there.
bool IsNewKey(const IndexPageView& page, EntryPlace place, const EntryBytes& entry) {
  if (!place.IsEnd() && HasKeyOf(page, place, entry)) return false;
  const EntryPlace before = page.Previous(place);
  return before.IsEnd() || !HasKeyOf(page, before, entry);
}

}  // namespace

IndexEditor::IndexEditor(Pager& pager, PageAllocator& allocator, const Index& index, PageNumber tablePage)
    : m_pager(&pager),
      m_allocator(&allocator),
      m_index(&index),
      m_tablePage(tablePage),
      m_map(pager, index.Definition().usageMap) {}

void IndexEditor::RaiseDamaged(const char* what) const {
  throw Error(ErrorNumber::DamagedFile, "The " + m_index->Where() + " is damaged: " + what + ".");
}

// The rightmost child is a separate one only if no entry names it. Other writers name the last child both
// ways, or name the last leaf from a branch that is not right above the leaves.
bool IndexEditor::IsKeylessChild(PageNumber tail, PageNumber lastKeyed) const {
  if (tail == 0 || tail == lastKeyed) return false;
  const PageHandle a = m_pager->Get(tail);
  const PageHandle b = m_pager->Get(lastKeyed);
  return a.Data()[0] == b.Data()[0];
}

PageNumber IndexEditor::Descend(const EntryBytes& entry) {
  m_path.Clear();
  PageNumber number = Root();
  while (m_path.Length() < Index::kMaxDepth) {
    const PageHandle page = m_pager->Get(number);
    const IndexPageView view(page.Bytes(), number);
    if (view.Table() != m_tablePage) RaiseDamaged("a page of it belongs to another table");
    if (view.IsLeaf()) return number;
    EntryPlace place = view.PlaceFor(entry);
    bool keyed = true;
    PageNumber child = 0;
    if (place.IsEnd()) {
      place = view.Last();
      if (place.IsEnd()) RaiseDamaged("a branch page has no entries");
      child = view.Child(place);
      if (IsKeylessChild(view.Tail(), child)) {
        child = view.Tail();
        keyed = false;
      }
    } else {
      child = view.Child(place);
    }
    m_path.Add({number, keyed});
    number = child;
  }
  RaiseDamaged("its branches are a ring");
}

bool IndexEditor::Insert(KeyBytes key, RowId row) {
  const EntryBytes entry = MakeEntry(std::move(key), row);
  if (entry.size() > kMaxEntry) {
    throw Error(ErrorNumber::RecordTooLarge,
                "The values of the row are too long for the " + m_index->Where() + ".");
  }
  return InsertEntry(entry);
}

bool IndexEditor::InsertEntry(const EntryBytes& entry) {
  for (;;) {
    const PageNumber leaf = Descend(entry);
    bool isEndOfIndex = false;
    {
      const MutablePage changed = m_pager->Change(leaf);
      IndexPage page(changed.Bytes(), leaf);
      const EntryPlace place = page.LowerBound(entry);
      const bool isLast = place.IsEnd();
      if (!isLast && page.Compare(place, entry) == 0)
        RaiseDamaged("it already has an entry for a row that is being added");
      const bool newKey = IsNewKey(page, place, entry);
      if (page.Insert(place, entry)) {
        if (isLast && m_path.Length() != 0) RefreshKeys(m_path.Length(), leaf);
        return newKey;
      }
      isEndOfIndex = isLast && page.IndexPageView::Next() == 0;
      if (isEndOfIndex || page.First().end == page.Used()) {
        SplitLeaf(leaf, &entry);
        return newKey;
      }
    }
    // The halves fit, having been one page; the entry may share less with them than they do with each other,
    // so that a half may have to be split again.
    SplitLeaf(leaf, nullptr);
  }
}

std::optional<LeafRoom> IndexEditor::FindRoom(const EntryBytes& entry) {
  if (entry.size() > kMaxEntry) return std::nullopt;
  const PageNumber leaf = Descend(entry);
  const PageHandle page = m_pager->Get(leaf);
  const IndexPageView view(page.Bytes(), leaf);
  const EntryPlace place = view.PlaceFor(entry);
  if (!view.HasRoomFor(place, entry)) return std::nullopt;
  if (place.IsEnd()) {
    // Branches that name the leaf by its last entry would change too.
    for (std::size_t level = 0; level < m_path.Length(); ++level) {
      if (m_path[level].keyed) return std::nullopt;
    }
  } else if (view.Compare(place, entry) == 0) {
    return std::nullopt;
  }
  const bool isAtEdge =
      (place.IsEnd() && view.IndexPageView::Next() != 0) || (place.begin == 0 && view.Previous() != 0);
  return LeafRoom{m_pager->Change(leaf), place, IsNewKey(view, place, entry), isAtEdge};
}

bool IndexEditor::Erase(const KeyBytes& key, RowId row) {
  return EraseEntry(MakeEntry(key, row));
}

bool IndexEditor::EraseRow(RowId row) {
  IndexCursor cursor = m_index->Range({}, {});
  while (cursor.Next()) {
    if (cursor.Row() == row) return EraseEntry(cursor.Entry());
  }
  return false;
}

bool IndexEditor::EraseEntry(const EntryBytes& entry) {
  const PageNumber leaf = Descend(entry);
  {
    const PageHandle page = m_pager->Get(leaf);
    const IndexPageView view(page.Bytes(), leaf);
    const EntryPlace place = view.LowerBound(entry);
    if (place.IsEnd() || view.Read(place) != entry) return false;
  }
  bool wasLast = false;
  bool isEmpty = false;
  {
    const MutablePage changed = m_pager->Change(leaf);
    IndexPage page(changed.Bytes(), leaf);
    const EntryPlace place = page.LowerBound(entry);
    wasLast = page.IndexPageView::Next(place).IsEnd();
    page.Remove(place);
    isEmpty = page.Used() == 0;
  }
  if (m_path.Length() == 0) return true;
  if (isEmpty) {
    Unlink(leaf);
    FreePage(leaf);
    RemoveChild(m_path.Length() - 1, leaf);
  } else if (wasLast) {
    RefreshKeys(m_path.Length(), leaf);
  }
  return true;
}

// Splits a leaf in the middle; or, with `appended`, puts that entry on a new page: keys that grow fill
// every page, and an entry that nearly fills a page has it for itself.
void IndexEditor::SplitLeaf(PageNumber leaf, const EntryBytes* appended) {
  EntryBytes pool;
  EntrySpans entries;
  {
    const PageHandle page = m_pager->Get(leaf);
    entries = IndexPageView(page.Bytes(), leaf).AllEntries(pool);
  }
  std::size_t cut = 0;
  if (appended == nullptr) {
    cut = MiddleOf(entries, [](std::span<const std::byte> entry) { return entry.size(); });
  } else {
    const auto place = std::ranges::lower_bound(entries, *appended, [](const auto& a, const auto& b) {
      return std::ranges::lexicographical_compare(a, b);
    });
    cut = std::max<std::size_t>(1, static_cast<std::size_t>(place - entries.begin()));
    entries.insert(place, *appended);
  }
  const std::span<const std::span<const std::byte>> all = entries;
  const PageNumber left = m_path.Length() == 0 ? NewPage(0).Number() : leaf;
  const PageNumber right = NewPage(0).Number();
  for (const auto& [number, part] : {std::pair{left, all.first(cut)}, std::pair{right, all.subspan(cut)}}) {
    const MutablePage page = m_pager->Change(number);
    [[maybe_unused]] const bool fits = IndexPage(page.Bytes(), number).Assign(part);
    assert(fits);
  }
  LinkAfter(left, right);
  const Child first{EntryBytes(entries[cut - 1].begin(), entries[cut - 1].end()), left};
  if (m_path.Length() == 0) {
    {
      const MutablePage root = m_pager->Change(leaf);
      IndexPage::Initialize(root.Bytes(), m_tablePage, 1);
    }
    WriteBranch(leaf, {{first}, right});
  } else {
    ReplaceChild(m_path.Length() - 1, leaf, {&first, 1}, right);
  }
}

// The child `child` of the branch at `level` of the path was split: `firsts`, and `last` in its role.
void IndexEditor::ReplaceChild(std::size_t level, PageNumber child, std::span<const Child> firsts,
                               PageNumber last) {
  Branch branch = ReadBranch(m_path[level].page);
  auto found =
      std::find_if(branch.keyed.begin(), branch.keyed.end(), [&](const Child& c) { return c.page == child; });
  if (found == branch.keyed.end()) {
    branch.keyed.insert(branch.keyed.end(), firsts.begin(), firsts.end());
    branch.tail = last;
  } else {
    *found = {LastEntry(last), last};
    branch.keyed.insert(found, firsts.begin(), firsts.end());
  }
  UpdateBranch(level, branch);
}

IndexEditor::Branch IndexEditor::ReadBranch(PageNumber number) const {
  const PageHandle page = m_pager->Get(number);
  const IndexPageView view(page.Bytes(), number);
  Branch branch;
  for (EntryPlace place = view.First(); !place.IsEnd(); place = view.Next(place)) {
    EntryBytes key = view.Read(place);
    if (key.size() < kRowBytes + kChildBytes) RaiseDamaged("an entry of a branch page is too short");
    key.resize(key.size() - kChildBytes);
    branch.keyed.push_back({std::move(key), view.Child(place)});
  }
  if (branch.keyed.empty()) RaiseDamaged("a branch page has no entries");
  const bool named = std::any_of(branch.keyed.begin(), branch.keyed.end(),
                                 [&](const Child& c) { return c.page == view.Tail(); });
  if (!named && IsKeylessChild(view.Tail(), branch.keyed.back().page)) branch.tail = view.Tail();
  return branch;
}

std::vector<EntryBytes> IndexEditor::EntriesOf(const std::vector<Child>& children) {
  std::vector<EntryBytes> entries;
  entries.reserve(children.size());
  for (const Child& child : children) {
    EntryBytes entry = child.key;
    entry.resize(entry.size() + kChildBytes);
    format::StoreBigU32(entry.data() + child.key.size(), child.page);
    entries.push_back(std::move(entry));
  }
  return entries;
}

// False, and nothing changed, when the entries do not fit the page.
bool IndexEditor::WriteBranch(PageNumber number, const Branch& branch) {
  const std::vector<EntryBytes> entries = EntriesOf(branch.keyed);
  const MutablePage page = m_pager->Change(number);
  IndexPage writer(page.Bytes(), number);
  if (!writer.Assign(entries)) {
    if (entries.size() == 1) RaiseDamaged("an entry of it is too long for a branch");
    return false;
  }
  writer.SetTail(branch.tail);
  return true;
}

void IndexEditor::UpdateBranch(std::size_t level, const Branch& branch) {
  if (WriteBranch(m_path[level].page, branch)) {
    RefreshKeys(level, m_path[level].page);
  } else {
    SplitBranch(level, branch);
  }
}

// Cuts children at `cut`, and the parts again in their middle as long as they do not fit a page.
void IndexEditor::AddParts(std::span<const Child> children, std::size_t cut,
                           std::vector<std::vector<Child>>& parts) {
  for (const std::span<const Child> part : {children.first(cut), children.subspan(cut)}) {
    std::vector<Child> copy(part.begin(), part.end());
    const std::vector<EntryBytes> entries = EntriesOf(copy);
    if (part.size() <= 1 || IndexPage::PrefixToFit(EntrySpans(entries.begin(), entries.end()))) {
      parts.push_back(std::move(copy));
    } else {
      AddParts(part, MiddleOf(part, [](const Child& child) { return child.key.size(); }), parts);
    }
  }
}

void IndexEditor::SplitBranch(std::size_t level, const Branch& branch) {
  // A branch with a tail is the last of its level and grows at its end: leave it full.
  const std::size_t cut = branch.tail != 0
                              ? branch.keyed.size() - 1
                              : MiddleOf(branch.keyed, [](const Child& child) { return child.key.size(); });
  std::vector<std::vector<Child>> parts;
  AddParts(branch.keyed, cut, parts);

  const PageNumber number = m_path[level].page;
  std::uint8_t height = 0;
  {
    const PageHandle page = m_pager->Get(number);
    height = std::max<std::uint8_t>(1, IndexPageView(page.Bytes(), number).Level());
  }
  std::vector<Child> written;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const PageNumber page = i == 0 && level != 0 ? number : NewPage(height).Number();
    EntryBytes last = parts[i].back().key;
    [[maybe_unused]] const bool fits =
        WriteBranch(page, {std::move(parts[i]), i + 1 == parts.size() ? branch.tail : 0});
    assert(fits);
    if (i > 0) LinkAfter(written.back().page, page);
    written.push_back({std::move(last), page});
  }
  const PageNumber last = written.back().page;
  written.pop_back();
  if (level != 0) {
    ReplaceChild(level - 1, number, written, last);
    return;
  }
  {
    const MutablePage root = m_pager->Change(number);
    IndexPage::Initialize(root.Bytes(), m_tablePage, static_cast<std::uint8_t>(height + 1));
  }
  WriteBranch(number, {std::move(written), last});
}

// The greatest entry below `child`, a child of the branch at `level` - 1 of the path, may have changed: makes
// the entries that name it say so.
void IndexEditor::RefreshKeys(std::size_t level, PageNumber child) {
  while (level > 0) {
    --level;
    const PageNumber page = m_path[level].page;
    if (m_path[level].keyed) {
      Branch branch = ReadBranch(page);
      for (Child& entry : branch.keyed) {
        if (entry.page != child) continue;
        EntryBytes last = LastEntry(child);
        if (entry.key == last) return;
        entry.key = std::move(last);
        UpdateBranch(level, branch);
        return;
      }
    }
    child = page;
  }
}

// `child` of the branch at `level` of the path is gone.
void IndexEditor::RemoveChild(std::size_t level, PageNumber child) {
  const PageNumber page = m_path[level].page;
  Branch branch = ReadBranch(page);
  if (branch.tail == child) {
    branch.tail = 0;
    if (branch.keyed.size() > 1) {
      branch.tail = branch.keyed.back().page;
      branch.keyed.pop_back();
    }
  } else {
    std::erase_if(branch.keyed, [&](const Child& c) { return c.page == child; });
  }
  if (branch.keyed.empty() && branch.tail == 0) {
    if (level == 0) {
      const MutablePage root = m_pager->Change(page);
      IndexPage::Initialize(root.Bytes(), m_tablePage, 0);
      return;
    }
    Unlink(page);
    FreePage(page);
    RemoveChild(level - 1, page);
    return;
  }
  if (level == 0 && branch.keyed.size() + (branch.tail != 0 ? 1 : 0) == 1) {
    CollapseRoot(branch.keyed.empty() ? branch.tail : branch.keyed.front().page);
    return;
  }
  if (branch.keyed.empty()) {
    branch.keyed.push_back({LastEntry(branch.tail), branch.tail});
    branch.tail = 0;
  }
  UpdateBranch(level, branch);
}

// The root has one child left: it takes over the child's entries, and so on while that is so.
void IndexEditor::CollapseRoot(PageNumber child) {
  for (;;) {
    bool isLeaf = false;
    {
      const PageHandle from = m_pager->Get(child);
      const MutablePage root = m_pager->Change(Root());
      root.Bytes() = from.Bytes();
      IndexPage page(root.Bytes(), Root());
      page.SetPrevious(0);
      page.SetNext(0);
      isLeaf = page.IsLeaf();
    }
    FreePage(child);
    if (isLeaf) return;
    const Branch branch = ReadBranch(Root());
    if (branch.tail != 0 || branch.keyed.size() != 1) return;
    child = branch.keyed.front().page;
  }
}

EntryBytes IndexEditor::LastEntry(PageNumber number) const {
  for (std::size_t depth = 0; depth < Index::kMaxDepth; ++depth) {
    const PageHandle page = m_pager->Get(number);
    const IndexPageView view(page.Bytes(), number);
    const EntryPlace last = view.Last();
    if (last.IsEnd()) RaiseDamaged("a page of it has no entries");
    if (view.IsLeaf()) return view.Read(last);
    const PageNumber child = view.Child(last);
    number = IsKeylessChild(view.Tail(), child) ? view.Tail() : child;
  }
  RaiseDamaged("its branches are a ring");
}

MutablePage IndexEditor::NewPage(std::uint8_t level) {
  MutablePage page = m_allocator->Allocate();
  IndexPage::Initialize(page.Bytes(), m_tablePage, level);
  m_map.Add(page.Number(), *m_allocator);
  return page;
}

void IndexEditor::FreePage(PageNumber page) {
  m_map.Remove(page);
  m_allocator->Free(page);
}

void IndexEditor::LinkAfter(PageNumber left, PageNumber right) {
  const MutablePage leftPage = m_pager->Change(left);
  const MutablePage rightPage = m_pager->Change(right);
  IndexPage leftView(leftPage.Bytes(), left);
  IndexPage rightView(rightPage.Bytes(), right);
  const PageNumber next = leftView.IndexPageView::Next();
  leftView.SetNext(right);
  rightView.SetPrevious(left);
  rightView.SetNext(next);
  if (next != 0) {
    const MutablePage nextPage = m_pager->Change(next);
    IndexPage(nextPage.Bytes(), next).SetPrevious(right);
  }
}

void IndexEditor::Unlink(PageNumber number) {
  PageNumber previous = 0;
  PageNumber next = 0;
  {
    const PageHandle page = m_pager->Get(number);
    const IndexPageView view(page.Bytes(), number);
    previous = view.Previous();
    next = view.Next();
  }
  if (previous != 0) {
    const MutablePage page = m_pager->Change(previous);
    IndexPage(page.Bytes(), previous).SetNext(next);
  }
  if (next != 0) {
    const MutablePage page = m_pager->Change(next);
    IndexPage(page.Bytes(), next).SetPrevious(previous);
  }
}

}  // namespace jet
