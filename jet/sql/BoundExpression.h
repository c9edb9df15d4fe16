#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "jet/Value.h"
#include "jet/sql/Ast.h"
#include "jet/sql/Comparison.h"
#include "jet/sql/LikePattern.h"

namespace jet::sql {

/// Where a column's values come from: which of the statement's tables, and which column of its definition.
struct ColumnPlace {
  std::size_t source = 0;
  std::size_t column = 0;
  friend bool operator==(const ColumnPlace&, const ColumnPlace&) = default;
};

struct BoundColumn {
  ColumnPlace place;
  ColumnType type = ColumnType::Long;
};

/// An expression whose names are looked up and whose kinds fit each other, ready to be evaluated.
struct BoundExpression {
  Expression::Kind kind = Expression::Kind::Literal;
  ValueKind valueKind =
      ValueKind::Null;  ///< of what it gives when it does not give Null; conditions: a number
  BoundColumn column;
  Value literal;
  std::size_t place = 0;  ///< of a literal: where it stands in the statement, without its sign
  bool negated = false;   ///< a number behind a minus
  Comparison comparison = Comparison::Equal;
  Operator arithmetic = Operator::Add;
  Function function = Function::Date;
  std::optional<LikePattern> pattern;  ///< of a like whose pattern is a literal
  std::string text;                    ///< a column or literal as written, for people
  std::vector<BoundExpression> operands;
};

/// Looks up the names of columns.
class NameScope {
 public:
  virtual ~NameScope() = default;
  /// Raises UnknownColumnInStatement.
  virtual BoundColumn Resolve(const ColumnName& name) const = 0;
};

/// Looks up the names of a condition and checks its kinds. Raises UnknownColumnInStatement, TypeMismatch,
/// BadPattern.
BoundExpression BindCondition(const Expression& condition, const NameScope& scope);

/// The same of any expression. Raises TypeMismatch too for arithmetic with what are no numbers.
BoundExpression BindExpression(const Expression& expression, const NameScope& scope);

/// Calls `visit` with every column in the expression.
template <typename Visit>
void ForEachColumn(const BoundExpression& expression, const Visit& visit) {
  if (expression.kind == Expression::Kind::Column) visit(expression.column.place);
  for (const BoundExpression& operand : expression.operands)
    ForEachColumn(operand, visit);
}

}  // namespace jet::sql
