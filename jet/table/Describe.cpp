#include "jet/table/Describe.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/table/StoredQuery.h"

namespace jet {

using format::ColumnDefinition;
using format::LogicalIndexDefinition;

namespace {

// Attributes of a relationship (grbit).
constexpr std::int32_t kNotEnforced = 0x2;
constexpr std::int32_t kCascadeUpdates = 0x100;
constexpr std::int32_t kCascadeDeletes = 0x1000;

// Types of the catalog's objects (column Type).
constexpr std::pair<std::int32_t, ObjectKind> kObjectTypes[] = {
    {1, ObjectKind::Table},        {2, ObjectKind::Database},    {3, ObjectKind::Container},
    {4, ObjectKind::LinkedTable},  {5, ObjectKind::Query},       {6, ObjectKind::LinkedTable},
    {8, ObjectKind::Relationship}, {-32768, ObjectKind::Form},   {-32766, ObjectKind::Macro},
    {-32764, ObjectKind::Report},  {-32761, ObjectKind::Module}, {-32758, ObjectKind::User},
    {-32757, ObjectKind::Document}};
constexpr std::uint32_t kSystemFlags = 0x80000002;

ObjectKind KindOf(std::int32_t type, std::uint32_t flags) {
  const auto* const found =
      std::ranges::find(kObjectTypes, type, &std::pair<std::int32_t, ObjectKind>::first);
  if (found == std::end(kObjectTypes)) return ObjectKind::Unknown;
  const bool isSystemTable = found->second == ObjectKind::Table && (flags & kSystemFlags) != 0;
  return isSystemTable ? ObjectKind::SystemTable : found->second;
}

ColumnSpec DescribeColumn(const Table& table, std::size_t number) {
  const ColumnDefinition& column = table.Definition().columns[number];
  const ColumnRules& rules = table.Rules(number);
  ColumnSpec result;
  result.name = column.name;
  result.type = column.type;
  if (column.type == ColumnType::Text) result.length = column.size / 2;
  if (column.type == ColumnType::Binary || column.type == ColumnType::Block) result.length = column.size;
  result.autoNumber = column.IsAutoNumber();
  result.compressed = column.compressed;
  result.required = rules.required;
  result.allowZeroLength = rules.allowZeroLength;
  result.defaultValue = rules.defaultValue;
  result.validation = rules.validation;
  result.precision = column.precision;
  result.scale = column.scale;
  return result;
}

IndexSpec DescribeIndex(const Table& table, const LogicalIndexDefinition& logical) {
  const format::IndexDefinition& real = table.Definition().indexes[logical.real];
  IndexSpec result;
  result.name = logical.name;
  for (std::size_t i = 0; i < real.columns.size(); ++i) {
    const std::size_t column = table.IndexColumns(logical.real)[i];
    result.columns.push_back({table.Definition().columns[column].name, real.columns[i].ascending});
  }
  result.primary = logical.kind == LogicalIndexDefinition::Kind::Primary;
  result.foreign = logical.kind == LogicalIndexDefinition::Kind::Relation;
  result.unique = real.IsUnique();
  result.required = real.IsRequired();
  result.ignoreNulls = real.IgnoresNulls();
  return result;
}

}  // namespace

TableInfo DescribeTable(const Table& table) {
  TableInfo info;
  info.name = table.Name();
  info.isSystem = table.IsSystem();
  info.rowCount = table.RowCount();
  info.validation = table.RowRule();
  // Definitions list columns in any order; people know them in the order of their making.
  std::vector<std::size_t> order(table.Definition().columns.size());
  for (std::size_t c = 0; c < order.size(); ++c)
    order[c] = c;
  std::ranges::sort(order, {}, [&](std::size_t c) { return table.Definition().columns[c].number; });
  for (const std::size_t c : order)
    info.columns.push_back(DescribeColumn(table, c));
  for (const LogicalIndexDefinition& index : table.Definition().logicalIndexes) {
    info.indexes.push_back(DescribeIndex(table, index));
  }
  return info;
}

std::vector<RelationInfo> DescribeRelations(Store& store) {
  const Table& relations = store.TableAt(format::system_page::kRelationships);
  const auto column = [&](const char* name) {
    const std::optional<std::size_t> found = relations.FindColumn(name);
    if (!found) {
      throw Error(ErrorNumber::DamagedFile,
                  "Table 'MSysRelationships' is damaged: it has no column '" + std::string(name) + "'.");
    }
    return *found;
  };
  const std::size_t name = column("szRelationship");
  const std::size_t attributes = column("grbit");
  const std::size_t position = column("icolumn");
  const std::size_t table = column("szObject");
  const std::size_t tableColumn = column("szColumn");
  const std::size_t parent = column("szReferencedObject");
  const std::size_t parentColumn = column("szReferencedColumn");

  struct Pair {
    std::int32_t position;
    std::string column;
    std::string parentColumn;
  };
  std::map<std::string, std::pair<RelationInfo, std::vector<Pair>>> found;
  for (TableScan scan(relations); scan.Next();) {
    const auto text = [&](std::size_t c) { return relations.Read(scan.Row(), c).ToText(); };
    const auto number = [&](std::size_t c) {
      const Value value = relations.Read(scan.Row(), c);
      return value.As<std::int32_t>() == nullptr ? 0 : *value.As<std::int32_t>();
    };
    const std::string relationName = text(name);
    auto& [info, pairs] = found[format::FoldName(relationName)];
    info.name = relationName;
    info.table = text(table);
    info.parentTable = text(parent);
    info.enforced = (number(attributes) & kNotEnforced) == 0;
    info.cascadeUpdates = (number(attributes) & kCascadeUpdates) != 0;
    info.cascadeDeletes = (number(attributes) & kCascadeDeletes) != 0;
    pairs.push_back({number(position), text(tableColumn), text(parentColumn)});
  }
  std::vector<RelationInfo> result;
  for (auto& [key, entry] : found) {
    auto& [info, pairs] = entry;
    std::ranges::sort(pairs, {}, &Pair::position);
    for (Pair& pair : pairs) {
      info.columns.push_back(std::move(pair.column));
      info.parentColumns.push_back(std::move(pair.parentColumn));
    }
    result.push_back(std::move(info));
  }
  return result;
}

const char* NameOf(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::Table:
      return "table";
    case ObjectKind::SystemTable:
      return "system table";
    case ObjectKind::LinkedTable:
      return "linked table";
    case ObjectKind::Query:
      return "stored query";
    case ObjectKind::Relationship:
      return "relationship";
    case ObjectKind::Form:
      return "form";
    case ObjectKind::Report:
      return "report";
    case ObjectKind::Macro:
      return "macro";
    case ObjectKind::Module:
      return "module";
    case ObjectKind::Document:
      return "document";
    case ObjectKind::Container:
      return "container";
    case ObjectKind::Database:
      return "database";
    case ObjectKind::User:
      return "user";
    case ObjectKind::Unknown:
      break;
  }
  return "object of an unknown kind";
}

std::vector<ObjectInfo> DescribeObjects(Store& store) {
  const Table& catalog = store.TableAt(format::system_page::kObjects);
  const std::map<std::uint32_t, std::string> queries = StoredQueryTexts(store);
  std::vector<ObjectInfo> objects;
  for (TableScan scan(catalog); scan.Next();) {
    const auto read = [&](const char* name) {
      const std::optional<std::size_t> column = catalog.FindColumn(name);
      return column ? catalog.Read(scan.Row(), *column) : Value();
    };
    const auto number = [&](const char* name) {
      const Value value = read(name);
      return value.As<std::int32_t>() == nullptr ? 0 : *value.As<std::int32_t>();
    };
    ObjectInfo object;
    object.name = read("Name").ToText();
    object.kind = KindOf(number("Type"), static_cast<std::uint32_t>(number("Flags")));
    if (object.kind == ObjectKind::LinkedTable) {
      for (const char* const part : {"ForeignName", "Database", "Connect"}) {
        const std::string text = read(part).ToText();
        if (!text.empty()) object.definition += (object.definition.empty() ? "" : " in ") + text;
      }
    } else if (const auto found = queries.find(static_cast<std::uint32_t>(number("Id")));
               object.kind == ObjectKind::Query && found != queries.end()) {
      object.definition = found->second;
    }
    objects.push_back(std::move(object));
  }
  std::ranges::sort(objects, [](const ObjectInfo& a, const ObjectInfo& b) {
    return format::CompareNames(a.name, b.name) < 0;
  });
  return objects;
}

std::string DescribeNoTable(Store& store, std::string_view name) {
  std::vector<ObjectInfo> objects;
  try {
    objects = DescribeObjects(store);
  } catch (const Error&) {
    return {};  // the missing table is the error to report
  }
  for (const ObjectInfo& object : objects) {
    if (!format::SameName(object.name, name)) continue;
    return " '" + object.name + "' is a " + NameOf(object.kind) +
           (object.definition.empty() ? "." : ": " + object.definition);
  }
  return {};
}

}  // namespace jet
