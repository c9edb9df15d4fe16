#include "jet/table/RelationWriter.h"

#include <algorithm>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/format/TableDefinitionLayout.h"
#include "jet/table/CatalogWriter.h"
#include "jet/table/DefinitionWriter.h"
#include "jet/table/IndexBuilder.h"
#include "jet/table/TableLayout.h"

namespace jet {

using format::LogicalIndexDefinition;
using format::TableDefinition;

namespace {

// Attributes of a relationship (column grbit of MSysRelationships).
constexpr std::uint32_t kOneToOne = 0x1;
constexpr std::uint32_t kNotEnforced = 0x2;
constexpr std::uint32_t kCascadeUpdates = 0x100;
constexpr std::uint32_t kCascadeDeletes = 0x1000;

constexpr std::uint32_t kAdminRights = 0xF00FE;
constexpr std::uint32_t kUsersRights = 0xFFFFF;

Error Invalid(const std::string& relation, const std::string& why) {
  return Error(ErrorNumber::InvalidDefinition,
               "Relationship '" + relation + "' cannot be made: " + why + ".");
}

}  // namespace

void ChangeDefinition(Table& table, TableDefinition& definition) {
  Pager& pager = table.Owner().Pages();
  PageAllocator& allocator = table.Owner().Allocator();
  std::vector<std::uint32_t> pages;
  const format::DefinitionCounts counts =
      format::DecodeDefinitionCounts(ReadDefinitionStream(pager, definition.page, pages));
  CompleteDefinition(pager, allocator, definition, format::RowPointerPage(definition.ownedPages));
  WriteDefinition(pager, allocator, definition, counts);
  table.Reload();
}

RelationWriter::RelationWriter(Store& store, Table& child, Table& parent, RelationInfo relation)
    : m_store(&store), m_child(&child), m_parent(&parent), m_relation(std::move(relation)) {
  CheckName("relationship", m_relation.name);
  if (CatalogWriter(store).Has(catalog::kRelationships, m_relation.name)) {
    throw Error(ErrorNumber::ObjectExists,
                "The database already has a relationship '" + m_relation.name + "'.");
  }
  FindColumns();
  if (m_relation.enforced) {
    FindParentIndex();
    CheckNewIndexName(m_child->Definition(), m_child->Name(), m_relation.name);
    const std::size_t room = m_child == m_parent ? 2 : 1;
    if (m_parent->Definition().logicalIndexes.size() + room > kMaxIndexesOfTable) {
      throw Invalid(m_relation.name, "table '" + m_parent->Name() + "' has 32 indexes and can have no more");
    }
  }
  FindChildIndex();
}

void RelationWriter::FindColumns() {
  const auto& names = m_relation.columns;
  if (names.empty() || names.size() > format::definition_page::kMaxIndexColumns) {
    throw Invalid(m_relation.name, "it needs 1 to 10 columns");
  }
  if (names.size() != m_relation.parentColumns.size())
    throw Invalid(m_relation.name, "its tables have not as many columns each");
  const auto find = [&](const Table& table, const std::string& name, std::vector<std::size_t>& into) {
    const std::optional<std::size_t> column = table.FindColumn(name);
    if (!column) throw Invalid(m_relation.name, "table '" + table.Name() + "' has no column '" + name + "'");
    if (std::find(into.begin(), into.end(), *column) != into.end()) {
      throw Invalid(m_relation.name, "it names the column '" + name + "' twice");
    }
    into.push_back(*column);
  };
  for (std::size_t i = 0; i < names.size(); ++i) {
    find(*m_child, names[i], m_childColumns);
    find(*m_parent, m_relation.parentColumns[i], m_parentColumns);
    if (m_child->Definition().columns[m_childColumns[i]].type !=
        m_parent->Definition().columns[m_parentColumns[i]].type) {
      throw Invalid(m_relation.name, "the columns '" + names[i] + "' and '" + m_relation.parentColumns[i] +
                                         "' are of different types");
    }
  }
}

// Of the parent's unique indexes on just its columns the primary key is preferred.
void RelationWriter::FindParentIndex() {
  std::optional<std::size_t> found;
  for (std::size_t i = 0; i < m_parent->IndexCount(); ++i) {
    const std::vector<std::size_t>& columns = m_parent->IndexColumns(i);
    if (!m_parent->IndexAt(i).Definition().IsUnique() ||
        !std::is_permutation(columns.begin(), columns.end(), m_parentColumns.begin(),
                             m_parentColumns.end())) {
      continue;
    }
    if (!found || m_parent->PrimaryIndex() == i) found = i;
  }
  if (!found) {
    throw Invalid(m_relation.name,
                  "table '" + m_parent->Name() + "' has no unique index on just the columns referred to");
  }
  m_parentIndex = *found;
  // Both sides follow the order of the index.
  std::vector<std::size_t> childColumns;
  for (const std::size_t column : m_parent->IndexColumns(m_parentIndex)) {
    const auto pair =
        std::find(m_parentColumns.begin(), m_parentColumns.end(), column) - m_parentColumns.begin();
    childColumns.push_back(m_childColumns[static_cast<std::size_t>(pair)]);
  }
  m_parentColumns = m_parent->IndexColumns(m_parentIndex);
  m_childColumns = std::move(childColumns);
}

void RelationWriter::FindChildIndex() {
  for (std::size_t i = 0; i < m_child->IndexCount(); ++i) {
    if (m_child->IndexColumns(i) != m_childColumns) continue;
    if (!m_childIndex || m_child->IndexAt(i).Definition().IsUnique()) m_childIndex = i;
  }
}

std::uint32_t RelationWriter::Attributes() const {
  std::uint32_t attributes = 0;
  if (m_childIndex && m_child->IndexAt(*m_childIndex).Definition().IsUnique()) attributes |= kOneToOne;
  if (!m_relation.enforced) return attributes | kNotEnforced;
  if (m_relation.cascadeUpdates) attributes |= kCascadeUpdates;
  if (m_relation.cascadeDeletes) attributes |= kCascadeDeletes;
  return attributes;
}

// The parent's side of a relationship has a name that people do not see: ".r" and a letter.
std::string RelationWriter::HiddenName(const TableDefinition& definition, std::uint32_t number) const {
  const auto isTaken = [&](const std::string& name) {
    return std::any_of(definition.logicalIndexes.begin(), definition.logicalIndexes.end(),
                       [&](const auto& index) { return format::SameName(index.name, name); });
  };
  std::string name = ".r";
  name += static_cast<char>('A' + number % 26);
  for (char letter = 'A'; isTaken(name) && letter <= 'Z'; ++letter)
    name[2] = letter;
  for (int further = 1; isTaken(name); ++further)
    name = ".rA" + std::to_string(further);
  return name;
}

void RelationWriter::LinkDefinitions() {
  TableDefinition child = m_child->Definition();
  const bool newIndex = !m_childIndex;
  if (newIndex) {
    format::IndexDefinition index;
    for (const std::size_t column : m_childColumns)
      index.columns.push_back({child.columns[column].number, true});
    index.flags = format::index_flag::kAlways;
    m_childIndex = child.indexes.size();
    child.indexes.push_back(std::move(index));
  }
  LogicalIndexDefinition childSide;
  childSide.name = m_relation.name;
  childSide.number = NextIndexNumber(child);
  childSide.real = static_cast<std::uint32_t>(*m_childIndex);
  childSide.side = LogicalIndexDefinition::Side::Child;
  childSide.kind = LogicalIndexDefinition::Kind::Relation;
  childSide.cascadeUpdates = m_relation.cascadeUpdates ? 1 : 0;
  childSide.cascadeDeletes = m_relation.cascadeDeletes ? 1 : 0;
  const bool toItself = m_child == m_parent;
  LogicalIndexDefinition parentSide = childSide;
  parentSide.number = toItself ? childSide.number + 1 : NextIndexNumber(m_parent->Definition());
  parentSide.real = static_cast<std::uint32_t>(m_parentIndex);
  parentSide.side = LogicalIndexDefinition::Side::Parent;
  parentSide.name = HiddenName(m_parent->Definition(), parentSide.number);
  childSide.partnerNumber = parentSide.number;
  childSide.partnerTable = m_parent->Definition().page;
  parentSide.partnerNumber = childSide.number;
  parentSide.partnerTable = child.page;

  child.logicalIndexes.push_back(childSide);
  if (toItself) child.logicalIndexes.push_back(parentSide);
  ChangeDefinition(*m_child, child);
  if (!toItself) {
    TableDefinition parent = m_parent->Definition();
    parent.logicalIndexes.push_back(parentSide);
    ChangeDefinition(*m_parent, parent);
  }
  if (newIndex) BuildIndex(*m_child, *m_childIndex);
}

void RelationWriter::CheckRows() const {
  const Index& parent = m_parent->IndexAt(m_parentIndex);
  for (TableScan scan(*m_child); scan.Next();) {
    std::vector<Value> key;
    for (const std::size_t column : m_childColumns)
      key.push_back(m_child->Read(scan.Row(), column));
    if (std::any_of(key.begin(), key.end(), [](const Value& value) { return value.IsNull(); })) continue;
    const std::optional<KeyBytes> bytes = parent.KeyPrefix(key);
    if (bytes && parent.Find(*bytes)) continue;
    std::string text;
    for (std::size_t i = 0; i < key.size(); ++i) {
      text += (i == 0 ? "" : ", ") + m_child->Definition().columns[m_childColumns[i]].name + " = " +
              key[i].ToText();
    }
    throw Error(ErrorNumber::NoReferredRow, "Relationship '" + m_relation.name + "' cannot be made: table '" +
                                                m_child->Name() + "' has a row with " + text +
                                                ", and table '" + m_parent->Name() + "' has no such row.");
  }
}

void RelationWriter::AddToCatalog() const {
  CatalogWriter writer(*m_store);
  const auto count = static_cast<std::int32_t>(m_childColumns.size());
  for (std::size_t i = 0; i < m_childColumns.size(); ++i) {
    writer.AddRow(format::system_page::kRelationships,
                  {{"szRelationship", m_relation.name},
                   {"grbit", static_cast<std::int32_t>(Attributes())},
                   {"ccolumn", count},
                   {"icolumn", static_cast<std::int32_t>(i)},
                   {"szObject", m_child->Name()},
                   {"szColumn", m_child->Definition().columns[m_childColumns[i]].name},
                   {"szReferencedObject", m_parent->Name()},
                   {"szReferencedColumn", m_parent->Definition().columns[m_parentColumns[i]].name}});
  }
  const Accounts accounts = writer.FindAccounts();
  const std::uint32_t id = writer.NextId();
  writer.AddObject(
      {id, catalog::kRelationships, m_relation.name, catalog::kTypeRelationship, 0, accounts.admin, {}});
  writer.AddRight({id, accounts.admin, kAdminRights, false});
  writer.AddRight({id, accounts.users, kUsersRights, false});
}

void RelationWriter::Write() {
  if (m_relation.enforced) {
    CheckRows();
    LinkDefinitions();
  }
  AddToCatalog();
}

}  // namespace jet
