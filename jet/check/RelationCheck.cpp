#include "jet/check/RelationCheck.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>

#include "jet/format/IndexKey.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"

namespace jet::check {

using namespace format;
using Kind = LogicalIndexDefinition::Kind;

namespace {

constexpr std::int32_t kNotEnforced = 0x2;
constexpr std::int32_t kCascadeUpdates = 0x100;
constexpr std::int32_t kCascadeDeletes = 0x1000;

template <typename T>
T ValueOr(const Value& value, T otherwise) {
  const auto* held = value.As<T>();
  return held == nullptr ? otherwise : *held;
}

/// Bytes that are the same for equal values: the form in index keys, or the folded text where there is none.
/// Nothing when a column is Null.
std::optional<std::string> KeyOf(const Table& table, const RowRef& row,
                                 const std::vector<std::size_t>& columns) {
  std::string key;
  for (const std::size_t place : columns) {
    const Value value = table.Read(row, place);
    if (value.IsNull()) return std::nullopt;
    std::vector<std::byte> bytes;
    if (AppendKeyColumn(bytes, value, table.Definition().columns[place], true)) {
      for (const std::byte byte : bytes)
        key.push_back(static_cast<char>(byte));
    } else {
      key += FoldName(value.ToText()) + '\0';
    }
  }
  return key;
}

bool IsOnColumns(const Table& table, std::uint32_t real, const std::vector<std::size_t>& columns) {
  return real < table.IndexCount() && table.IndexColumns(real) == columns;
}

}  // namespace

void RelationCheck::Run() {
  m_findings->Guard("relationships", [&] {
    for (const Relation& relation : ReadRelations()) {
      const std::string where = "relationship '" + relation.name + "'";
      if (relation.columnCount != relation.childColumns.size()) m_findings->Add(where, "lacks columns");
      const auto child = FindSide(relation.childTable, relation.childColumns);
      const auto parent = FindSide(relation.parentTable, relation.parentColumns);
      if (!child || !parent) {
        m_findings->Add(where, "names a table or a column that does not exist");
      } else if ((relation.flags & kNotEnforced) == 0) {
        CheckIndexes(relation, *child, *parent);
        m_findings->Guard(where, [&] { CheckOrphans(relation, *child, *parent); });
      }
    }
  });
  CheckStrayIndexes();
}

std::vector<RelationCheck::Relation> RelationCheck::ReadRelations() {
  const auto table = m_tables->find(system_page::kRelationships);
  if (table == m_tables->end()) return {};
  auto rows = ReadColumns(table->second, {"szRelationship", "grbit", "ccolumn", "icolumn", "szObject",
                                          "szColumn", "szReferencedObject", "szReferencedColumn"});
  std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) {
    return ValueOr<std::int32_t>(a[3], 0) < ValueOr<std::int32_t>(b[3], 0);
  });
  std::map<std::string, Relation> relations;
  for (const auto& row : rows) {
    Relation& relation = relations[FoldName(ValueOr<std::string>(row[0], {}))];
    relation.name = ValueOr<std::string>(row[0], {});
    relation.flags = ValueOr<std::int32_t>(row[1], 0);
    relation.columnCount = static_cast<std::size_t>(ValueOr<std::int32_t>(row[2], 0));
    relation.childTable = ValueOr<std::string>(row[4], {});
    relation.childColumns.push_back(ValueOr<std::string>(row[5], {}));
    relation.parentTable = ValueOr<std::string>(row[6], {});
    relation.parentColumns.push_back(ValueOr<std::string>(row[7], {}));
  }
  std::vector<Relation> all;
  for (auto& [name, relation] : relations)
    all.push_back(std::move(relation));
  return all;
}

std::optional<RelationCheck::Side> RelationCheck::FindSide(const std::string& table,
                                                           const std::vector<std::string>& columns) const {
  Side side;
  for (const auto& [page, checked] : *m_tables) {
    if (SameName(checked.table->Name(), table)) side.checked = &checked;
  }
  if (side.checked == nullptr) return std::nullopt;
  for (const std::string& column : columns) {
    const auto place = side.checked->table->FindColumn(column);
    if (!place) return std::nullopt;
    side.columns.push_back(*place);
  }
  return side;
}

void RelationCheck::CheckIndexes(const Relation& relation, const Side& child, const Side& parent) {
  const std::string where = "relationship '" + relation.name + "'";
  const Table& childTable = *child.checked->table;
  const Table& parentTable = *parent.checked->table;
  const LogicalIndexDefinition* found = nullptr;
  for (const LogicalIndexDefinition& index : childTable.Definition().logicalIndexes) {
    if (index.kind != Kind::Relation || index.side != LogicalIndexDefinition::Side::Child) continue;
    if (index.partnerTable != parentTable.Definition().page ||
        !IsOnColumns(childTable, index.real, child.columns))
      continue;
    if (found == nullptr || SameName(index.name, relation.name)) found = &index;
  }
  if (found == nullptr) {
    m_findings->Add(where, "table '" + childTable.Name() + "' has no index for it");
    return;
  }
  m_named.emplace(childTable.Definition().page, found->number);
  m_named.emplace(parentTable.Definition().page, found->partnerNumber);
  if (((relation.flags & kCascadeUpdates) != 0) != (found->cascadeUpdates == 1) ||
      ((relation.flags & kCascadeDeletes) != 0) != (found->cascadeDeletes == 1)) {
    m_findings->Add(where, "the catalog and the index differ in the cascades");
  }
  for (const LogicalIndexDefinition& index : parentTable.Definition().logicalIndexes) {
    if (index.number != found->partnerNumber) continue;
    if (!IsOnColumns(parentTable, index.real, parent.columns)) {
      m_findings->Add(where, "the index of the referred table is on other columns");
    } else if (!parentTable.Definition().indexes[index.real].IsUnique()) {
      m_findings->Add(where, "the index of the referred table is not unique");
    }
  }
}

void RelationCheck::CheckOrphans(const Relation& relation, const Side& child, const Side& parent) {
  std::unordered_set<std::string> present;
  const Table& parentTable = *parent.checked->table;
  for (const RowId id : parent.checked->rows) {
    const auto row = parentTable.Fetch(id);
    auto key = row ? KeyOf(parentTable, *row, parent.columns) : std::nullopt;
    if (key) present.insert(std::move(*key));
  }
  const Table& childTable = *child.checked->table;
  for (const RowId id : child.checked->rows) {
    const auto row = childTable.Fetch(id);
    const auto key = row ? KeyOf(childTable, *row, child.columns) : std::nullopt;
    if (key && present.count(*key) == 0) {
      m_findings->Add("relationship '" + relation.name + "'",
                      "the row of '" + childTable.Name() + "' at " + PlaceOf(id.page, id.slot) +
                          " refers to no row of '" + parentTable.Name() + "'");
    }
  }
}

void RelationCheck::CheckStrayIndexes() {
  for (const auto& [page, checked] : *m_tables) {
    for (const LogicalIndexDefinition& index : checked.table->Definition().logicalIndexes) {
      if (index.kind == Kind::Relation && m_named.count({page, index.number}) == 0) {
        m_findings->Add("index '" + index.name + "' of table '" + checked.table->Name() + "'",
                        "is for a relationship that the file does not have");
      }
    }
  }
}

}  // namespace jet::check
