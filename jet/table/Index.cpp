#include "jet/table/Index.h"

#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/IndexKey.h"

namespace jet {

using format::EntryBytes;
using format::EntryPlace;
using format::IndexPageView;

namespace {
constexpr std::size_t kUsualKey = 32;  // most keys are shorter
}  // namespace

void StepKey(KeyBytes& key) {
  while (!key.empty() && key.back() == std::byte{0xFF})
    key.pop_back();
  if (!key.empty()) key.back() = static_cast<std::byte>(std::to_integer<unsigned>(key.back()) + 1);
}

KeyBytes KeyAfter(KeyBytes prefix) {
  StepKey(prefix);
  return prefix;
}

EntryBytes MakeEntry(KeyBytes key, RowId row) {
  const std::size_t size = key.size();
  key.resize(size + format::index_page::kRowBytes);
  format::StoreBigU32(key.data() + size, row.page << 8 | row.slot);
  return key;
}

Index::Index(Pager& pager, const format::TableDefinition& table, std::size_t number, std::string where)
    : m_pager(&pager), m_table(&table), m_number(number), m_where(std::move(where)) {}

void Index::RaiseDamaged(const std::string& what) const {
  throw Error(ErrorNumber::DamagedFile, "The " + m_where + " is damaged: " + what + ".");
}

IndexPageView Index::View(const PageHandle& page) const {
  IndexPageView view(page.Bytes(), page.Number());
  if (view.Table() != m_table->page)
    RaiseDamaged("page " + std::to_string(page.Number()) + " belongs to another table");
  return view;
}

std::optional<KeyBytes> Index::KeyPrefix(std::span<const Value> leading) const {
  KeyBytes key;
  key.reserve(kUsualKey);
  const auto& columns = Definition().columns;
  for (std::size_t i = 0; i < leading.size() && i < columns.size(); ++i) {
    for (const format::ColumnDefinition& column : m_table->columns) {
      if (column.number != columns[i].column) continue;
      if (!format::AppendKeyColumn(key, leading[i], column, columns[i].ascending)) return std::nullopt;
      break;
    }
  }
  return key;
}

KeyBytes Index::FirstNotNull() const {
  // Ascending: Null is 00, values begin with 7f. Descending: values begin with 80, Null is ff.
  if (Definition().columns.front().ascending) return {std::byte{0x7F}};
  return {};
}

IndexCursor Index::Range(std::span<const std::byte> lower, std::span<const std::byte> upper) const {
  return IndexCursor(*this, lower, upper);
}

std::optional<RowId> Index::Find(const KeyBytes& prefix) const {
  const KeyBytes upper = KeyAfter(prefix);
  IndexCursor cursor = Range(prefix, upper);
  if (!cursor.Next()) return std::nullopt;
  return cursor.Row();
}

PageHandle Index::FindLeaf(std::span<const std::byte> key) const {
  PageNumber number = Definition().root;
  for (std::size_t depth = 0; depth < kMaxDepth; ++depth) {
    PageHandle page = m_pager->Get(number);
    const IndexPageView view = View(page);
    if (view.IsLeaf()) return page;
    EntryPlace place = view.LowerBound(key);
    if (place.IsEnd() && view.Tail() != 0) {
      number = view.Tail();
      continue;
    }
    if (place.IsEnd()) place = view.Last();
    if (place.IsEnd()) RaiseDamaged("branch page " + std::to_string(number) + " has no entries");
    number = view.Child(place);
  }
  RaiseDamaged("its branches are a ring");
}

PageHandle Index::LastLeaf() const {
  PageNumber number = Definition().root;
  for (std::size_t depth = 0; depth < kMaxDepth; ++depth) {
    PageHandle page = m_pager->Get(number);
    const IndexPageView view = View(page);
    if (view.IsLeaf()) return page;
    if (view.Tail() == 0 && view.Last().IsEnd()) {
      RaiseDamaged("branch page " + std::to_string(number) + " has no entries");
    }
    number = view.Tail() != 0 ? view.Tail() : view.Child(view.Last());
  }
  RaiseDamaged("its branches are a ring");
}

std::optional<RowId> Index::Last(const KeyBytes& upper) const {
  PageHandle page = upper.empty() ? LastLeaf() : FindLeaf(upper);
  for (std::size_t steps = 0; steps <= m_pager->PageCount(); ++steps) {
    const IndexPageView view = View(page);
    const EntryPlace place = upper.empty() || steps > 0 ? view.Last() : view.Previous(view.LowerBound(upper));
    if (!place.IsEnd()) return RowId{view.RowPage(place), view.RowSlot(place)};
    const PageNumber previous = view.Previous();
    if (previous == 0) return std::nullopt;
    page = m_pager->Get(previous);
  }
  RaiseDamaged("its leaves are a ring");
}

IndexCursor::IndexCursor(const Index& index, std::span<const std::byte> lower,
                         std::span<const std::byte> upper)
    : m_index(&index), m_lower(lower), m_upper(upper), m_pagesLeft(index.m_pager->PageCount()) {}

void IndexCursor::Enter(PageHandle leaf) {
  if (m_pagesLeft-- == 0) m_index->RaiseDamaged("its leaves are a ring");
  m_view.reset();
  m_page = std::move(leaf);
  m_view = m_index->View(m_page);
  if (!m_view->IsLeaf()) m_index->RaiseDamaged("page " + std::to_string(m_page.Number()) + " is no leaf");
}

bool IndexCursor::Next() {
  if (!m_started) {
    m_started = true;
    Enter(m_index->FindLeaf(m_lower));
    m_place = m_view->LowerBound(m_lower);
  } else if (m_place.IsEnd()) {
    return false;
  } else {
    m_place = m_view->Next(m_place);
  }
  while (m_place.IsEnd()) {
    const PageNumber next = m_view->Next();
    if (next == 0) return false;
    Enter(m_index->m_pager->Get(next));
    m_place = m_view->First();
  }
  if (!m_upper.empty() && m_view->Compare(m_place, m_upper) >= 0) {
    m_place = {m_view->Used(), m_view->Used()};
    return false;
  }
  return true;
}

RowId IndexCursor::Row() const {
  return {m_view->RowPage(m_place), m_view->RowSlot(m_place)};
}

}  // namespace jet
