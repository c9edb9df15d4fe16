#include "jet/sql/Ast.h"

namespace jet::sql {

std::string Describe(const ColumnName& column) {
  return column.table.empty() ? "[" + column.name + "]" : "[" + column.table + "].[" + column.name + "]";
}

std::string Describe(const Expression& expression) {
  switch (expression.kind) {
    case Expression::Kind::Column:
      return Describe(expression.column);
    case Expression::Kind::Literal:
      if (expression.literal.IsNull()) return "Null";
      if (const auto* text = expression.literal.As<std::string>()) return "'" + *text + "'";
      return expression.literal.ToText();
    case Expression::Kind::Arithmetic:
      return "the result of arithmetic";
    case Expression::Kind::Call:
      return "the result of a function";
    default:
      return "a condition";
  }
}

}  // namespace jet::sql
