#include "jet/sql/Query.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/table/Describe.h"

namespace jet::sql {
namespace {

[[noreturn]] void RaiseUnknown(const std::string& sentence) {
  throw Error(ErrorNumber::UnknownColumnInStatement, sentence);
}

class SourceScope final : public NameScope {
 public:
  explicit SourceScope(const std::vector<SourceTable>& sources) : m_sources(&sources) {}

  BoundColumn Resolve(const ColumnName& name) const override {
    const BoundColumn* found = nullptr;
    BoundColumn candidate;
    bool knowsTable = false;
    for (std::size_t source = 0; source < m_sources->size(); ++source) {
      const SourceTable& table = (*m_sources)[source];
      if (!name.table.empty() && !format::SameName(table.label, name.table)) continue;
      knowsTable = true;
      const std::optional<std::size_t> column = table.table->FindColumn(name.name);
      if (!column) continue;
      if (found != nullptr) {
        RaiseUnknown(
            "The column " + Describe(name) +
            " could belong to more than one table of the statement; put the table's name before it.");
      }
      candidate = {{source, *column}, table.table->Definition().columns[*column].type};
      found = &candidate;
    }
    if (found != nullptr) return candidate;
    if (!knowsTable) {
      RaiseUnknown("The statement names the column " + Describe(name) +
                   ", but none of its tables is called '" + name.table + "'.");
    }
    RaiseUnknown("The statement names the column " + Describe(name) + ", which " +
                 (m_sources->size() == 1 ? "table '" + m_sources->front().table->Name() + "' does not have."
                                         : std::string("none of its tables has.")));
  }

 private:
  const std::vector<SourceTable>* m_sources;
};

void BindSources(const SelectStatement& statement, Store& store, Query& query) {
  if (statement.tables.size() > kMaxSources) {
    throw Error(ErrorNumber::SyntaxErrorInFrom,
                "The statement joins more than " + std::to_string(kMaxSources) + " tables.");
  }
  for (const TableReference& reference : statement.tables) {
    Table* const table = store.FindTable(reference.name);
    if (table == nullptr) {
      throw Error(ErrorNumber::UnknownTable, "The database '" + store.FileName() + "' has no table '" +
                                                 reference.name + "'." +
                                                 DescribeNoTable(store, reference.name));
    }
    const std::string& label = reference.alias.empty() ? table->Name() : reference.alias;
    for (const SourceTable& other : query.sources) {
      if (!format::SameName(other.label, label)) continue;
      throw Error(ErrorNumber::SyntaxErrorInFrom,
                  "The from clause has two tables called '" + label + "'; give one of them another name.");
    }
    query.sources.push_back({table, label});
  }
}

void AddStar(const SelectItem& item, Query& query) {
  bool any = false;
  for (std::size_t source = 0; source < query.sources.size(); ++source) {
    const SourceTable& table = query.sources[source];
    if (!item.column.table.empty() && !format::SameName(table.label, item.column.table)) continue;
    any = true;
    const auto& columns = table.table->Definition().columns;
    for (std::size_t c = 0; c < columns.size(); ++c)
      query.columns.push_back(
          {columns[c].name, table.label, Aggregate::None, false, {source, c}, columns[c].type});
  }
  if (!any) RaiseUnknown("None of the tables of the statement is called '" + item.column.table + "'.");
}

ColumnType TypeOf(Aggregate aggregate, ColumnType type) {
  switch (aggregate) {
    case Aggregate::Count:
      return ColumnType::Long;
    case Aggregate::Sum:
      return type == ColumnType::Currency ? type : ColumnType::Double;
    case Aggregate::Average:
      return ColumnType::Double;
    default:
      return type;
  }
}

void AddColumn(const SelectItem& item, const SourceScope& scope, Query& query) {
  OutputColumn column;
  column.aggregate = item.aggregate;
  column.star = item.star;
  column.name = item.alias;
  if (!item.star) {
    const BoundColumn bound = scope.Resolve(item.column);
    column.place = bound.place;
    column.type = bound.type;
    const SourceTable& source = query.sources[bound.place.source];
    if (item.aggregate == Aggregate::None) {
      column.label = source.label;
      if (column.name.empty()) column.name = source.table->Definition().columns[bound.place.column].name;
    }
    const ValueKind kind = KindOf(bound.type);
    const bool adds = item.aggregate == Aggregate::Sum || item.aggregate == Aggregate::Average;
    const bool compares = item.aggregate == Aggregate::Max || item.aggregate == Aggregate::Min;
    if ((adds && kind != ValueKind::Number) || (compares && kind == ValueKind::Binary)) {
      throw Error(ErrorNumber::TypeMismatch, "The column " + Describe(item.column) + " is " + NameOf(kind) +
                                                 ", of which there is no such aggregate.");
    }
  }
  column.type = TypeOf(item.aggregate, column.type);
  query.columns.push_back(std::move(column));
}

void BindColumns(const SelectStatement& statement, const SourceScope& scope, Query& query) {
  for (const SelectItem& item : statement.items) {
    if (item.star && item.aggregate == Aggregate::None) {
      AddStar(item, query);
    } else {
      AddColumn(item, scope, query);
    }
  }
  const auto isAggregate = [](const OutputColumn& column) { return column.aggregate != Aggregate::None; };
  query.aggregates = std::any_of(query.columns.begin(), query.columns.end(), isAggregate);
  if (query.aggregates &&
      (!statement.order.empty() || !std::all_of(query.columns.begin(), query.columns.end(), isAggregate))) {
    throw Error(ErrorNumber::SyntaxErrorInExpression,
                "A statement with aggregates gives one row: it can have neither other columns nor an order.");
  }
}

// Columns of one name get the name of their table before it; aggregates without a name get one.
void NameColumns(Query& query) {
  std::vector<bool> ambiguous;
  for (const OutputColumn& column : query.columns) {
    const auto same =
        std::count_if(query.columns.begin(), query.columns.end(), [&](const OutputColumn& other) {
          return !column.name.empty() && format::SameName(column.name, other.name) &&
                 column.label != other.label;
        });
    ambiguous.push_back(same > 0 && !column.label.empty());
  }
  for (std::size_t i = 0; i < query.columns.size(); ++i) {
    OutputColumn& column = query.columns[i];
    if (ambiguous[i]) column.name = column.label + "." + column.name;
    if (column.name.empty()) column.name = "Expr" + std::to_string(1000 + i);
  }
}

// The parts of an `and` one by one, so that each can be used on its own.
void AddConditions(const Expression& condition, const SourceScope& scope, Query& query) {
  if (condition.kind != Expression::Kind::And) {
    query.conditions.push_back(BindCondition(condition, scope));
    return;
  }
  for (const Expression& part : condition.operands)
    AddConditions(part, scope, query);
}

}  // namespace

Query BindSelect(const SelectStatement& statement, Store& store) {
  Query query;
  BindSources(statement, store, query);
  const SourceScope scope(query.sources);
  BindColumns(statement, scope, query);
  NameColumns(query);
  for (const Expression& condition : statement.conditions)
    AddConditions(condition, scope, query);
  for (const OrderItem& item : statement.order) {
    query.order.push_back({scope.Resolve(item.column), item.ascending});
  }
  return query;
}

}  // namespace jet::sql
