#include "jet/sql/KeyBounds.h"

#include <utility>

#include "jet/format/IndexKey.h"
#include "jet/sql/KeyFit.h"

namespace jet::sql {
namespace {

/// Appends the key of a value for one column; false when it has no key, or shares it with other values.
KeyFit AppendKey(const Value& wanted, const format::ColumnDefinition& column, bool ascending,
                 KeyBytes& bytes) {
  Value key;
  const KeyFit fit = FitKey(wanted, column, key);
  if (fit != KeyFit::Found) return fit;
  return format::AppendKeyColumn(bytes, key, column, ascending) ? fit : KeyFit::Unknown;
}

void RaiseLower(KeyBytes& lower, KeyBytes bound) {
  if (lower < bound) lower = std::move(bound);
}
void CutUpper(KeyBytes& upper, KeyBytes bound) {
  if (!bound.empty() && (upper.empty() || bound < upper)) upper = std::move(bound);
}

void Narrow(Comparison comparison, KeyBytes key, KeyBounds& bounds) {
  switch (comparison) {
    case Comparison::Less:
      return CutUpper(bounds.upper, std::move(key));
    case Comparison::LessOrEqual:
      return CutUpper(bounds.upper, KeyAfter(std::move(key)));
    case Comparison::Greater:
      return RaiseLower(bounds.lower, KeyAfter(std::move(key)));
    case Comparison::GreaterOrEqual:
      return RaiseLower(bounds.lower, std::move(key));
    default:
      return;
  }
}

}  // namespace

BoundsFit FindBounds(const Table& table, const IndexAccess& access, Evaluator& evaluator, KeyBounds& bounds) {
  const std::vector<std::size_t>& columns = table.IndexColumns(access.index);
  const auto& directions = table.IndexAt(access.index).Definition().columns;
  bounds.lower.clear();
  for (std::size_t i = 0; i < access.equal.size(); ++i) {
    const format::ColumnDefinition& column = table.Definition().columns[columns[i]];
    const BoundExpression& operand = *access.equal[i];
    const KeyFit fit =
        operand.kind == Expression::Kind::Literal
            ? AppendKey(operand.literal, column, directions[i].ascending, bounds.lower)
            : AppendKey(evaluator.Evaluate(operand), column, directions[i].ascending, bounds.lower);
    if (fit != KeyFit::Found) return fit == KeyFit::NoRow ? BoundsFit::NoRow : BoundsFit::Unknown;
  }
  bounds.upper = bounds.lower;
  StepKey(bounds.upper);
  if (access.ranges.empty()) return BoundsFit::Found;
  const std::size_t next = access.equal.size();
  const KeyBytes prefix = bounds.lower;
  for (const IndexRange& range : access.ranges) {
    KeyBytes key = prefix;
    const format::ColumnDefinition& column = table.Definition().columns[columns[next]];
    if (AppendKey(range.operand->literal, column, directions[next].ascending, key) == KeyFit::Found)
      Narrow(range.comparison, std::move(key), bounds);
  }
  return BoundsFit::Found;
}

bool HasBound(const BoundExpression& operand, const format::ColumnDefinition& column, bool ascending) {
  KeyBytes key;
  return operand.kind == Expression::Kind::Literal &&
         AppendKey(operand.literal, column, ascending, key) == KeyFit::Found;
}

}  // namespace jet::sql
