#include "jet/check/TableCheck.h"

#include <algorithm>
#include <set>
#include <utility>

#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"
#include "jet/format/RowCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/format/TextCodec.h"
#include "jet/format/ValueCodec.h"

namespace jet::check {

using namespace format;
using Kind = LogicalIndexDefinition::Kind;
using Side = LogicalIndexDefinition::Side;

namespace {

constexpr std::size_t kSlotNumbers = 256;  // a row pointer has one byte for the slot
constexpr std::size_t kMovedPointerBytes = 4;

[[noreturn]] void RaiseDamaged(const std::string& what) {
  throw Error(ErrorNumber::DamagedFile, what);
}

bool IsKnownType(ColumnType type) {
  const auto code = static_cast<std::uint8_t>(type);
  return (code >= static_cast<std::uint8_t>(ColumnType::YesNo) &&
          code <= static_cast<std::uint8_t>(ColumnType::Memo)) ||
         type == ColumnType::Guid || type == ColumnType::Decimal || type == ColumnType::Block;
}

}  // namespace

std::optional<CheckedTable> TableCheck::Run(const CatalogEntry& entry) {
  m_checked = {};
  m_targets.clear();
  m_pointedAt.clear();
  m_highestAutoNumber.reset();
  m_where = "table '" + entry.name + "'";
  if (!m_pages->Claim(entry.definition, "definition of " + m_where)) return std::nullopt;
  const bool readable = m_findings->Guard(m_where, [&] {
    m_checked.table = &m_store->TableAt(entry.definition);
    m_definition = &m_checked.table->Definition();
    CheckDefinition();
  });
  if (!readable) return std::nullopt;
  CheckColumns();
  CheckLogicalIndexes();
  ClaimLongValuePages();
  for (const PageNumber page : CheckMaps()) {
    if (!m_findings->Guard(m_where, [&] { CheckPage(page); })) m_checked.rowsKnown = false;
  }
  std::sort(m_checked.rows.begin(), m_checked.rows.end());
  CheckMovedRows();
  CheckCounts();
  return std::move(m_checked);
}

void TableCheck::CheckDefinition() {
  namespace layout = definition_page;
  std::vector<std::uint32_t> pages;
  const Bytes stream = ReadDefinitionStream(m_store->Pages(), m_definition->page, pages);
  m_counts = DecodeDefinitionCounts(stream);
  if (LoadU32(stream.data() + layout::kAutoNumberStep) != 1) {
    m_findings->Add(m_where, "its automatic numbers do not go up in steps of one");
  }
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (i > 0) m_pages->Claim(pages[i], "definition of " + m_where);
    const bool last = i + 1 == pages.size();
    const std::size_t usedBefore = i * (kPageSize - layout::kHeadSize);
    const std::size_t used = stream.size() - std::min(usedBefore, stream.size());
    const std::size_t expected = last ? kPageSize - std::min(used, kPageSize) : 0;
    const PageHandle page = m_store->Pages().Get(pages[i]);
    if (LoadU16(page.Data() + layout::kFreeBytes) != expected) {
      m_findings->Add(
          m_where, "its definition page " + std::to_string(pages[i]) + " has a wrong figure of free bytes");
    }
  }
}

void TableCheck::CheckColumns() {
  for (const ColumnDefinition& column : m_definition->columns) {
    const std::string where = m_where + " column '" + column.name + "'";
    if (!IsKnownType(column.type)) {
      m_findings->Add(where, "is of the unknown type " + std::to_string(static_cast<int>(column.type)));
    }
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' '; };
    if (std::any_of(column.name.begin(), column.name.end(), isControl))
      m_findings->Add(where, "has a name with control characters");
    if ((column.flags & column_flag::kAlways) == 0)
      m_findings->Add(where, "lacks a flag that every column has");
    const bool isTextSize = column.size % 2 == 0 && column.size > 0 && column.size <= 510;
    if (column.type == ColumnType::Text && !isTextSize)
      m_findings->Add(where, "has no size that a text can have");
    if (column.IsLongValue() && column.size != 0)
      m_findings->Add(where, "has a size although its values are long");
    if (column.type == ColumnType::YesNo && (!column.IsFixed() || column.size != 1)) {
      m_findings->Add(where, "is not laid out as a yes/no column");
    }
  }
}

void TableCheck::CheckLogicalIndexes() {
  std::set<std::uint32_t> backed;
  for (const LogicalIndexDefinition& index : m_definition->logicalIndexes) {
    const std::string where = "index '" + index.name + "' of " + m_where;
    backed.insert(index.real);
    if (index.kind == Kind::Primary && !m_definition->indexes[index.real].IsUnique()) {
      m_findings->Add(where, "is the primary key and not unique");
    }
    if (index.kind == Kind::Relation) {
      m_findings->Guard(where, [&] { CheckPartner(index, where); });
    } else if (index.partnerTable != 0) {
      m_findings->Add(where, "names another table and belongs to no relationship");
    }
  }
  for (std::uint32_t real = 0; real < m_definition->indexes.size(); ++real) {
    if (backed.count(real) == 0)
      m_findings->Add(m_where, "its index tree " + std::to_string(real) + " has no name");
  }
}

void TableCheck::CheckPartner(const LogicalIndexDefinition& index, const std::string& where) {
  const TableDefinition& other = m_store->TableAt(index.partnerTable).Definition();
  const auto partner =
      std::find_if(other.logicalIndexes.begin(), other.logicalIndexes.end(),
                   [&](const auto& candidate) { return candidate.number == index.partnerNumber; });
  if (partner == other.logicalIndexes.end()) {
    m_findings->Add(where, "the other table of the relationship has no index for it");
    return;
  }
  const bool pointsBack = partner->kind == Kind::Relation && partner->partnerTable == m_definition->page &&
                          partner->partnerNumber == index.number;
  if (!pointsBack)
    m_findings->Add(
        where, "the relationship's index of the other table, '" + partner->name + "', does not point back");
  const bool sidesDiffer = (index.side == Side::Parent && partner->side == Side::Child) ||
                           (index.side == Side::Child && partner->side == Side::Parent);
  if (!sidesDiffer) m_findings->Add(where, "is on the same side of the relationship as its partner");
  if (index.cascadeUpdates != partner->cascadeUpdates || index.cascadeDeletes != partner->cascadeDeletes) {
    m_findings->Add(where, "cascades differ on the two sides of the relationship");
  }
}

std::string TableCheck::LongValuesOf(const ColumnDefinition& column) const {
  return "long values of " + m_where + " column '" + column.name + "'";
}

void TableCheck::ClaimLongValuePages() {
  for (const ColumnDefinition& column : m_definition->columns) {
    if (!column.IsLongValue()) continue;
    const std::string name = LongValuesOf(column);
    const auto& all = m_definition->longValueMaps;
    const auto maps = std::find_if(all.begin(), all.end(),
                                   [&](const LongValueMaps& m) { return m.column == column.number; });
    if (maps == all.end()) {
      m_findings->Add(name, "have no usage maps");
      continue;
    }
    m_findings->Guard(name, [&] {
      std::vector<PageNumber> owned;
      if (maps->owned != 0) owned = m_pages->ReadMap(maps->owned, name);
      m_longValues->AddPages(owned, name);
      if (maps->free == 0) return;
      const auto strays = Without(m_pages->ReadMap(maps->free, name + " (free space)"), owned);
      if (!strays.empty())
        m_findings->Add(name, "the map of free space lists pages of others: " + Ranges(strays));
    });
  }
}

std::vector<PageNumber> TableCheck::CheckMaps() {
  std::vector<PageNumber> owned;
  const std::vector<PageNumber>& named = m_pages->DataPagesOf(m_definition->page);
  const bool ownedKnown = m_findings->Guard(
      m_where, [&] { owned = m_pages->ReadMap(m_definition->ownedPages, "pages of " + m_where); });
  if (!ownedKnown) {
    owned = named;  // so that the rows are checked anyway
  } else {
    const auto strays = Without(owned, named);
    const auto missing = Without(named, owned);
    if (!strays.empty())
      m_findings->Add(m_where, "its usage map lists pages without rows of it: " + Ranges(strays));
    if (!missing.empty())
      m_findings->Add(m_where, "its usage map lacks pages with rows of it: " + Ranges(missing));
    if (!missing.empty()) m_checked.rowsKnown = false;
    owned = Without(owned, strays);
  }
  m_findings->Guard(m_where, [&] {
    const auto free = m_pages->ReadMap(m_definition->freePages, "pages with room of " + m_where);
    const auto strays = Without(free, owned);
    if (!strays.empty())
      m_findings->Add(m_where, "its map of free space lists pages of others: " + Ranges(strays));
  });
  return owned;
}

void TableCheck::CheckPage(PageNumber number) {
  m_pages->Claim(number, "rows of " + m_where);
  const PageHandle page = m_store->Pages().Get(number);
  const DataPageView view(page.Bytes(), number);
  if (view.SlotCount() > kSlotNumbers)
    RaiseDamaged("page " + std::to_string(number) + " has more rows than a page can have");
  for (std::size_t i = 0; i < view.SlotCount(); ++i) {
    const RowId id{number, static_cast<std::uint8_t>(i)};
    const bool read = m_findings->Guard(m_where, [&] {
      const RowSlot slot = view.Slot(i);
      switch (slot.flags) {
        case data_page::kLive:
          m_checked.rows.push_back(id);
          CheckRow(id, view.Row(slot));
          break;
        case data_page::kMoved:
          CheckMovedRow(id, view.Row(slot));
          break;
        case data_page::kTarget:
          m_targets.push_back(id);
          break;
        default:  // deleted
          break;
      }
    });
    if (!read) m_checked.rowsKnown = false;
  }
}

void TableCheck::CheckMovedRow(RowId home, std::span<const std::byte> pointerBytes) {
  const std::string place = PlaceOf(home.page, home.slot);
  if (pointerBytes.size() < kMovedPointerBytes)
    RaiseDamaged("the moved row at " + place + " has no room for its pointer");
  const std::uint32_t pointer = LoadU32(pointerBytes.data());
  const RowId target{RowPointerPage(pointer), RowPointerSlot(pointer)};
  const PageHandle page = m_store->Pages().Get(target.page);
  const DataPageView view(page.Bytes(), target.page);
  const RowSlot body = view.Slot(target.slot);
  if (view.Owner() != m_definition->page || body.flags != data_page::kTarget) {
    RaiseDamaged("the moved row at " + place + " leads to " + PlaceOf(target.page, target.slot) +
                 ", which is no body of a moved row of this table");
  }
  m_pointedAt.push_back(target);
  m_checked.rows.push_back(home);
  CheckRow(home, view.Row(body));
}

void TableCheck::CheckRow(RowId id, std::span<const std::byte> row) {
  const auto check = [&] {
    const std::size_t columns = row.size() < 2 ? 0 : LoadU16(row.data());
    if (columns == 0 || columns > m_definition->columnsEver) {
      RaiseDamaged("the row says that it has " + std::to_string(columns) + " columns");
    }
    for (const ColumnDefinition& column : m_definition->columns)
      CheckValue(column, row);
  };
  m_findings->Guard(m_where, check, [id] { return "in the row at " + PlaceOf(id.page, id.slot) + ": "; });
}

void TableCheck::CheckValue(const ColumnDefinition& column, std::span<const std::byte> row) {
  const RowField field = FieldOf(row, column, m_definition->variableColumnsEver != 0);
  if (!field.present || column.type == ColumnType::YesNo) return;
  if (column.IsLongValue()) {
    const Bytes value = m_longValues->Follow(field.bytes, LongValuesOf(column));
    std::string text;
    if (column.type == ColumnType::Memo) DecodeText(value, text);
    return;
  }
  if (!IsKnownType(column.type)) return;
  const Value value = DecodeValue(column, field.bytes);
  if (const auto* date = value.As<DateTime>(); date != nullptr && !date->IsInRange()) {
    RaiseDamaged("the date in column '" + column.name + "' is none");
  }
  if (const auto* number = value.As<std::int32_t>(); number != nullptr && column.IsAutoNumber()) {
    m_highestAutoNumber = std::max(*number, m_highestAutoNumber.value_or(*number));
  }
}

void TableCheck::CheckMovedRows() {
  std::sort(m_pointedAt.begin(), m_pointedAt.end());
  for (std::size_t i = 1; i < m_pointedAt.size(); ++i) {
    if (m_pointedAt[i] == m_pointedAt[i - 1]) {
      m_findings->Add(m_where, "two rows moved to " + PlaceOf(m_pointedAt[i].page, m_pointedAt[i].slot));
    }
  }
  for (const RowId target : m_targets) {
    if (!std::binary_search(m_pointedAt.begin(), m_pointedAt.end(), target)) {
      m_findings->Add(m_where,
                      "no row leads to the body of a moved row at " + PlaceOf(target.page, target.slot));
    }
  }
}

void TableCheck::CheckCounts() {
  const std::size_t live = m_checked.rows.size();
  // Old files count too few rows of system tables.
  const bool tolerated = m_definition->isSystem && m_counts.rows < live;
  if (m_checked.rowsKnown && m_counts.rows != live && !tolerated) {
    m_findings->Add(m_where,
                    "counts " + std::to_string(m_counts.rows) + " rows and has " + std::to_string(live));
  }
  if (m_highestAutoNumber && *m_highestAutoNumber > static_cast<std::int32_t>(m_counts.lastAutoNumber)) {
    m_findings->Add(m_where, "has the automatic number " + std::to_string(*m_highestAutoNumber) +
                                 ", higher than the last one given");
  }
}

}  // namespace jet::check
