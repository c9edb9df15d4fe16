#include "jet/sql/PrefixSieve.h"

namespace jet::sql {

std::optional<PrefixSieve> PrefixSieve::Of(const BoundExpression& condition, std::size_t source,
                                           const format::TableDefinition& table) {
  if (condition.kind != Expression::Kind::Like || !condition.pattern) return std::nullopt;
  const BoundExpression& operand = condition.operands[0];
  if (operand.kind != Expression::Kind::Column || operand.column.type != ColumnType::Text ||
      operand.column.place.source != source)
    return std::nullopt;
  std::string prefix = condition.pattern->AsciiPrefix();
  if (prefix.empty()) return std::nullopt;
  return PrefixSieve(table.columns[operand.column.place.column], std::move(prefix));
}

}  // namespace jet::sql
