#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "jet/sql/Ast.h"
#include "jet/sql/BoundExpression.h"
#include "jet/table/Store.h"

namespace jet::sql {

/// A table of a statement, and the name by which the statement calls it.
struct SourceTable {
  Table* table = nullptr;
  std::string label;
};

/// A column of the result.
struct OutputColumn {
  std::string name;
  std::string label;  ///< the table that it comes from, as the statement calls it; empty for aggregates
  Aggregate aggregate = Aggregate::None;
  bool star = false;  ///< count(*)
  ColumnPlace place;
  ColumnType type = ColumnType::Long;
};

struct SortColumn {
  BoundColumn column;
  bool ascending = true;
};

/// A select statement whose names are looked up.
struct Query {
  std::vector<SourceTable> sources;
  std::vector<OutputColumn> columns;
  std::vector<BoundExpression> conditions;  ///< all must hold
  std::vector<SortColumn> order;
  bool aggregates = false;  ///< the result is one row of aggregates

  /// Whether each row of the result is one row of one table.
  bool IsPlain() const { return sources.size() == 1 && !aggregates; }
};

/// Most tables of a statement.
inline constexpr std::size_t kMaxSources = 32;

/// Looks up the names of a statement. The tables belong to `store`. Raises UnknownTable,
/// UnknownColumnInStatement, TypeMismatch, BadPattern, SyntaxErrorInFrom for tables of one name,
/// SyntaxErrorInExpression for aggregates beside plain columns.
Query BindSelect(const SelectStatement& statement, Store& store);

}  // namespace jet::sql
