#include "jet/check/IndexCheck.h"

#include <algorithm>

#include "jet/format/Bytes.h"
#include "jet/format/IndexKey.h"
#include "jet/format/PageLayout.h"
#include "jet/format/UsageMapRow.h"

namespace jet::check {

using namespace format;

namespace {

constexpr std::size_t kSmallestLeafEntry = 1 + index_page::kRowBytes;
constexpr std::size_t kSmallestBranchEntry = kSmallestLeafEntry + index_page::kChildBytes;

[[noreturn]] void RaiseDamaged(PageNumber page, const char* what) {
  throw Error(ErrorNumber::DamagedFile, "page " + std::to_string(page) + " " + what);
}

RowId RowOf(const EntryBytes& entry) {
  const std::byte* const at = entry.data() + entry.size() - index_page::kRowBytes;
  return {LoadBigU24(at), LoadU8(at + 3)};
}

std::span<const std::byte> KeyPart(const EntryBytes& entry) {
  return std::span(entry).first(entry.size() - index_page::kRowBytes);
}

}  // namespace

IndexCheck::IndexCheck(Store& store, PageUse& pages, Findings& findings, const CheckedTable& checked,
                       std::size_t number)
    : m_store(&store),
      m_pages(&pages),
      m_findings(&findings),
      m_checked(&checked),
      m_index(&checked.table->Definition().indexes[number]),
      m_columns(&checked.table->IndexColumns(number)),
      m_where("index '" + checked.table->IndexName(number) + "' of table '" + checked.table->Name() + "'") {}

void IndexCheck::Run() {
  m_isWhole = m_findings->Guard(m_where, [&] { Walk(m_index->root, 0); }) && m_isWhole;
  if (m_isWhole) {
    m_findings->Guard(m_where, [&] { CheckLeafChain(); });
    m_findings->Guard(m_where, [&] { CheckMap(); });
  }
  std::sort(m_rows.begin(), m_rows.end());
  for (std::size_t i = 1; i < m_rows.size(); ++i) {
    if (m_rows[i] == m_rows[i - 1]) {
      m_findings->Add(m_where, "has two entries for the row at " + PlaceOf(m_rows[i].page, m_rows[i].slot));
    }
  }
  if (m_isWhole && m_checked->rowsKnown) CheckRowsWithoutEntry();
}

void IndexCheck::Walk(PageNumber number, std::size_t depth) {
  if (depth > Index::kMaxDepth) RaiseDamaged(number, "is too deep in the tree");
  if (!m_pages->Claim(number, m_where)) {
    // Already visited: a cycle. Owned by another structure: already reported.
    if (m_pages->IsOwnedBy(number, m_where)) RaiseDamaged(number, "occurs twice in the tree");
    m_isWhole = false;
    return;
  }
  m_tree.push_back(number);
  const PageHandle page = m_store->Pages().Get(number);
  const IndexPageView view(page.Bytes(), number);
  CheckHead(view, number, page.Bytes());
  if (view.IsLeaf()) {
    WalkLeaf(view, number);
  } else {
    WalkBranch(view, number, depth);
  }
}

void IndexCheck::CheckHead(const IndexPageView& view, PageNumber page, std::span<const std::byte> bytes) {
  const std::string place = "page " + std::to_string(page) + " ";
  if (view.Table() != m_checked->table->Definition().page) {
    m_findings->Add(m_where,
                    place + "says that it belongs to the table of page " + std::to_string(view.Table()));
  }
  const std::uint32_t last = LastSetBit(bytes.subspan(index_page::kMask, index_page::kMaskBytes));
  const std::size_t used = last == kNoPage ? 0 : last;
  if (used > index_page::kCapacity || view.FreeSpace() != index_page::kCapacity - used) {
    m_findings->Add(m_where, place + "has a wrong figure of free bytes");
  }
  if (used == 0 && view.PrefixLength() != 0) m_findings->Add(m_where, place + "has a prefix and no entries");
}

void IndexCheck::WalkLeaf(const IndexPageView& view, PageNumber page) {
  m_leaves.push_back(page);
  if (view.Tail() != 0)
    m_findings->Add(m_where, "page " + std::to_string(page) + " is a leaf and names a last child");
  EntryBytes entry;
  for (EntryPlace place = view.First(); !place.IsEnd(); place = view.Next(place)) {
    view.Read(place, entry);
    if (entry.size() < kSmallestLeafEntry) RaiseDamaged(page, "has an entry that is too short");
    TakeEntry(entry, page);
  }
}

void IndexCheck::WalkBranch(const IndexPageView& view, PageNumber page, std::size_t depth) {
  if (view.First().IsEnd()) RaiseDamaged(page, "is a branch without entries");
  CheckNeighbours(view, page);
  PageNumber lastChild = 0;
  EntryBytes entry;
  for (EntryPlace place = view.First(); !place.IsEnd(); place = view.Next(place)) {
    view.Read(place, entry);
    if (entry.size() < kSmallestBranchEntry) RaiseDamaged(page, "has an entry that is too short");
    lastChild = view.Child(place);
    entry.resize(entry.size() - index_page::kChildBytes);
    WalkChild(page, lastChild, &entry, depth);
  }
  const PageNumber tail = view.Tail();
  if (tail == 0 || tail == lastChild) return;
  if (!m_pages->IsOwnedBy(tail, m_where)) {
    WalkChild(page, tail, nullptr, depth);
  } else if (m_leaves.empty() || tail != m_leaves.back()) {
    m_findings->Add(m_where, "page " + std::to_string(page) + " names a last child that is not the last");
  }
}

void IndexCheck::WalkChild(PageNumber branch, PageNumber child, const EntryBytes* expected,
                           std::size_t depth) {
  const std::size_t before = m_rows.size();
  const bool whole = m_findings->Guard(m_where, [&] { Walk(child, depth + 1); });
  m_isWhole = m_isWhole && whole;
  if (whole && expected != nullptr && m_rows.size() > before && m_lastEntry != *expected) {
    m_findings->Add(m_where, "page " + std::to_string(branch) + " has not the last entry of its child " +
                                 std::to_string(child));
  }
}

void IndexCheck::CheckNeighbours(const IndexPageView& view, PageNumber page) {
  for (const bool forward : {true, false}) {
    const PageNumber other = forward ? view.Next() : view.Previous();
    if (other == 0) continue;
    m_findings->Guard(m_where, [&] {
      const PageHandle handle = m_store->Pages().Get(other);
      const IndexPageView neighbour(handle.Bytes(), other);
      const PageNumber back = forward ? neighbour.Previous() : neighbour.Next();
      if (neighbour.IsLeaf() != view.IsLeaf() || back != page) {
        m_findings->Add(m_where, "page " + std::to_string(page) + " and its neighbour " +
                                     std::to_string(other) + " do not name each other");
      }
    });
  }
}

void IndexCheck::CheckLeafChain() {
  for (std::size_t i = 0; i < m_leaves.size(); ++i) {
    const PageHandle page = m_store->Pages().Get(m_leaves[i]);
    const IndexPageView view(page.Bytes(), m_leaves[i]);
    const PageNumber before = i == 0 ? 0 : m_leaves[i - 1];
    const PageNumber after = i + 1 == m_leaves.size() ? 0 : m_leaves[i + 1];
    if (view.Previous() != before || view.Next() != after) {
      m_findings->Add(m_where,
                      "leaf page " + std::to_string(m_leaves[i]) + " is not chained to its neighbours");
    }
  }
}

void IndexCheck::CheckMap() {
  const std::vector<PageNumber> listed = m_pages->ReadMap(m_index->usageMap, m_where);
  std::sort(m_tree.begin(), m_tree.end());
  const auto missing = Without(m_tree, listed);
  const auto strays = Without(listed, m_tree);
  if (!missing.empty()) m_findings->Add(m_where, "its usage map lacks pages of the tree: " + Ranges(missing));
  if (!strays.empty())
    m_findings->Add(m_where, "its usage map lists pages outside the tree: " + Ranges(strays));
}

void IndexCheck::TakeEntry(const EntryBytes& entry, PageNumber page) {
  const RowId row = RowOf(entry);
  const bool ascends =
      m_lastEntry.empty() ||
      std::lexicographical_compare(m_lastEntry.begin(), m_lastEntry.end(), entry.begin(), entry.end());
  if (!ascends && m_disorderedPage != page) {
    m_findings->Add(m_where, "entries of page " + std::to_string(page) + " are out of order");
    m_disorderedPage = page;
  }
  m_rows.push_back(row);
  CheckEntry(entry, row);
  m_lastEntry = entry;
}

IndexCheck::RowKey IndexCheck::KeyOf(const RowRef& row) const {
  const TableDefinition& definition = m_checked->table->Definition();
  RowKey key;
  for (std::size_t i = 0; i < m_columns->size(); ++i) {
    const ColumnDefinition& column = definition.columns[(*m_columns)[i]];
    const Value value = m_checked->table->ReadForKey(row, (*m_columns)[i]);
    if (value.IsNull()) ++key.nulls;
    key.isKnown = key.isKnown && AppendKeyColumn(key.bytes, value, column, m_index->columns[i].ascending);
  }
  return key;
}

void IndexCheck::CheckEntry(const EntryBytes& entry, RowId id) {
  const auto place = [id] { return PlaceOf(id.page, id.slot); };
  if (!std::binary_search(m_checked->rows.begin(), m_checked->rows.end(), id)) {
    if (m_checked->rowsKnown) m_findings->Add(m_where, "has an entry for " + place() + ", which is no row");
    return;
  }
  m_findings->Guard(m_where, [&] {
    const std::optional<RowRef> row = m_checked->table->Fetch(id);
    if (!row) return;
    const RowKey key = KeyOf(*row);
    const auto stored = KeyPart(entry);
    if (key.isKnown && !std::equal(stored.begin(), stored.end(), key.bytes.begin(), key.bytes.end())) {
      m_findings->Add(m_where, "the entry for " + place() + " is not the key of that row");
    }
    if (m_index->IgnoresNulls() && key.nulls == m_columns->size()) {
      m_findings->Add(m_where, "has an entry for " + place() + ", which has only Nulls");
    }
    if (m_index->IsRequired() && key.nulls > 0) {
      m_findings->Add(m_where, "the row at " + place() + " has a Null in a column of the index");
    }
    if (m_index->IsUnique() && key.nulls == 0 && !m_lastEntry.empty()) {
      const auto before = KeyPart(m_lastEntry);
      if (std::equal(stored.begin(), stored.end(), before.begin(), before.end())) {
        m_findings->Add(m_where,
                        "is unique, and the row at " + place() + " has the same key as the one before it");
      }
    }
  });
}

void IndexCheck::CheckRowsWithoutEntry() {
  for (const RowId id : m_checked->rows) {
    if (std::binary_search(m_rows.begin(), m_rows.end(), id)) continue;
    m_findings->Guard(m_where, [&] {
      const std::optional<RowRef> row = m_checked->table->Fetch(id);
      if (row && m_index->IgnoresNulls() && KeyOf(*row).nulls == m_columns->size()) return;
      m_findings->Add(m_where, "has no entry for the row at " + PlaceOf(id.page, id.slot));
    });
  }
}

}  // namespace jet::check
