#include "jet/table/Table.h"

#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/PropertyBlob.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/format/TextCodec.h"
#include "jet/format/ValueCodec.h"
#include "jet/table/LongValues.h"
#include "jet/table/Store.h"

namespace jet {

using format::ColumnDefinition;
using format::LogicalIndexDefinition;

namespace {
constexpr std::uint32_t kSystemObject = 0x80000000;
constexpr std::uint32_t kHiddenSystemObject = 2;

bool FlagIn(const format::PropertyBlob::Block& block, const char* name, bool otherwise) {
  const auto* const property = format::FindProperty(block, name);
  return property == nullptr || property->value.empty() ? otherwise : property->value[0] != std::byte{0};
}

/// A property's text; none when it is missing or empty.
std::optional<std::string> TextIn(const format::PropertyBlob::Block& block, const char* name) {
  const auto* const property = format::FindProperty(block, name);
  if (property == nullptr || property->value.empty()) return std::nullopt;
  std::string text;
  format::DecodeText(property->value, text);
  return text;
}

std::optional<ValidationRule> ValidationIn(const format::PropertyBlob::Block& block) {
  std::optional<std::string> expression = TextIn(block, "ValidationRule");
  if (!expression) return std::nullopt;
  return ValidationRule{*std::move(expression), TextIn(block, "ValidationText").value_or("")};
}

ColumnRules RulesIn(const format::PropertyBlob::Block& block) {
  return {FlagIn(block, "Required", false), FlagIn(block, "AllowZeroLength", true),
          TextIn(block, "DefaultValue"), ValidationIn(block)};
}
}  // namespace

Table::Table(Store& store, const CatalogEntry& entry)
    : m_store(&store),
      m_name(entry.name),
      m_isSystem((entry.flags & (kSystemObject | kHiddenSystemObject)) != 0),
      m_catalogRow(entry.row) {
  m_definition.page = entry.definition;
  Reload();
}

void Table::Reload() {
  Pager& pager = m_store->Pages();
  try {
    std::vector<std::uint32_t> pages;
    const Bytes stream = ReadDefinitionStream(pager, m_definition.page, pages);
    format::TableDefinition definition = format::DecodeTableDefinition(stream, m_definition.page);
    definition.pages = std::move(pages);
    m_definition = std::move(definition);
  } catch (Error& error) {
    error.AddContext("table '" + m_name + "'");
    throw;
  }
  m_rules.reset();
  m_rows = std::make_unique<RowStore>(pager, m_store->Allocator(), m_definition.ownedPages,
                                      m_definition.freePages, m_definition.page);
  m_indexes.clear();
  for (std::size_t i = 0; i < m_definition.indexes.size(); ++i) {
    std::vector<std::size_t> columns;
    for (const format::IndexColumnDefinition& wanted : m_definition.indexes[i].columns) {
      for (std::size_t c = 0; c < m_definition.columns.size(); ++c) {
        if (m_definition.columns[c].number == wanted.column) columns.push_back(c);
      }
    }
    m_indexes.push_back(
        {Index(pager, m_definition, i, "index '" + IndexName(i) + "' of table '" + m_name + "'"),
         std::move(columns)});
  }
}

const Table::TableRules& Table::ReadRules() const {
  if (m_rules) return *m_rules;
  TableRules rules;
  rules.columns.resize(m_definition.columns.size());
  Table& catalog = m_store->TableAt(format::system_page::kObjects);
  const std::optional<std::size_t> properties = catalog.FindColumn("LvProp");
  const std::optional<RowRef> row = catalog.Fetch(m_catalogRow);
  const Value blob = properties && row ? catalog.Read(*row, *properties) : Value();
  if (const Bytes* bytes = blob.As<Bytes>()) {
    const format::PropertyBlob decoded = format::DecodeProperties(*bytes);
    for (std::size_t c = 0; c < rules.columns.size(); ++c) {
      const auto* const block = decoded.FindColumn(m_definition.columns[c].name);
      if (block != nullptr) rules.columns[c] = RulesIn(*block);
      rules.hasExpressions = rules.hasExpressions || rules.columns[c].validation;
    }
    if (const auto* const block = decoded.FindObject()) rules.row = ValidationIn(*block);
    rules.hasExpressions = rules.hasExpressions || rules.row;
  }
  m_rules = std::move(rules);
  return *m_rules;
}

std::optional<std::size_t> Table::FindColumn(std::string_view name) const {
  for (std::size_t c = 0; c < m_definition.columns.size(); ++c) {
    if (format::SameName(m_definition.columns[c].name, name)) return c;
  }
  return std::nullopt;
}

std::uint32_t Table::RowCount() const {
  const PageHandle page = m_store->Pages().Get(m_definition.page);
  return format::LoadU32(page.Data() + format::definition_page::kRowCount);
}

Bytes Table::ReadLongValue(const ColumnDefinition& column, const format::RowField& field) const {
  return LongValues(m_store->Pages(), m_store->Allocator(), m_definition, column).Read(field.bytes);
}

Value Table::Read(const format::RowView& row, std::size_t column) const {
  const ColumnDefinition& definition = m_definition.columns[column];
  const format::RowField field = row.Field(definition);
  if (definition.type == ColumnType::YesNo) return field.present;
  if (!field.present) return {};
  if (!definition.IsLongValue()) return format::DecodeValue(definition, field.bytes);
  Bytes bytes = ReadLongValue(definition, field);
  if (definition.type == ColumnType::Ole) return bytes;
  std::string text;
  format::DecodeText(bytes, text);
  return text;
}

Value Table::ReadForKey(const RowRef& row, std::size_t column) const {
  const ColumnDefinition& definition = m_definition.columns[column];
  if (definition.type != ColumnType::Text && definition.type != ColumnType::Memo) return Read(row, column);
  const format::RowField field = View(row).Field(definition);
  if (!field.present) return {};
  std::string text;
  if (definition.type == ColumnType::Text) {
    format::DecodeText(field.bytes, text, format::LoneSurrogates::Keep);
  } else {
    format::DecodeText(ReadLongValue(definition, field), text, format::LoneSurrogates::Keep);
  }
  return text;
}

std::optional<std::string_view> Table::ReadText(const format::RowView& row, std::size_t column,
                                                std::string& buffer) const {
  const ColumnDefinition& definition = m_definition.columns[column];
  const format::RowField field = row.Field(definition);
  if (!field.present) return std::nullopt;
  if (definition.type == ColumnType::Text) {
    if (const std::optional<std::string_view> ascii = format::AsciiIn(field.bytes)) return ascii;
    format::DecodeText(field.bytes, buffer);
  } else {
    format::DecodeText(ReadLongValue(definition, field), buffer);
  }
  return buffer;
}

std::optional<std::size_t> Table::PrimaryIndex() const {
  for (const LogicalIndexDefinition& index : m_definition.logicalIndexes) {
    if (index.kind == LogicalIndexDefinition::Kind::Primary) return index.real;
  }
  return std::nullopt;
}

std::string Table::IndexName(std::size_t number) const {
  const LogicalIndexDefinition* best = nullptr;
  for (const LogicalIndexDefinition& index : m_definition.logicalIndexes) {
    if (index.real != number) continue;
    const bool forPeople = index.kind != LogicalIndexDefinition::Kind::Relation;
    if (best == nullptr || (forPeople && best->kind == LogicalIndexDefinition::Kind::Relation)) best = &index;
  }
  return best == nullptr ? "#" + std::to_string(number) : best->name;
}

const RowRef& TableScan::Row() {
  if (!m_hasRow) m_row = m_table->Rows().Resolve(m_page, *m_view, m_slot);
  m_hasRow = true;
  return m_row;
}

bool TableScan::NextPage() {
  using namespace format;
  // Rows may have come since the page was entered.
  if (m_page) {
    m_view.emplace(m_page.Bytes(), m_page.Number());
    if (m_nextSlot < m_view->SlotCount()) return true;
  }
  const PageNumber next = m_nextPage == kNoPage ? kNoPage : m_table->Rows().OwnedPages().Next(m_nextPage);
  if (next == kNoPage) {
    m_nextPage = kNoPage;
    m_view.reset();
    m_page = {};
    m_row = {};
    return false;
  }
  m_page = m_table->Owner().Pages().Get(next);
  m_view.emplace(m_page.Bytes(), next);
  if (m_view->Owner() != m_table->Definition().page || m_view->SlotCount() > data_page::kMaxSlots + 1) {
    throw Error(ErrorNumber::DamagedFile, "Page " + std::to_string(next) +
                                              " is damaged: it does not hold rows of table '" +
                                              m_table->Name() + "', which claims it.");
  }
  m_nextPage = next + 1;
  m_nextSlot = 0;
  return true;
}

}  // namespace jet
