#include "jet/sql/PreparedSelect.h"

#include <algorithm>

#include "jet/sql/Parser.h"

namespace jet::sql {
namespace {

using Kind = Expression::Kind;

std::int32_t Signed(std::int32_t number, bool negative) {
  return negative ? -number : number;
}

/// Stands in the plan's text for the literal of a slot.
std::string MarkOf(std::size_t slot) {
  return {StatementShape::kPlaceholder, static_cast<char>('0' + slot)};
}

/// Whether every whole number has exactly one key in such a column, or none at all.
bool HasKeysOfWholeNumbers(ColumnType type) {
  switch (type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
      return true;
    default:
      return false;
  }
}

}  // namespace

PreparedSelect::PreparedSelect(std::string_view statement, const StatementShape& shape, Store& store)
    : m_query(BindSelect(ParseSelect(statement), store)),
      m_slots(shape.numbers.count),
      m_executor(m_query, m_plan) {
  for (BoundExpression& condition : m_query.conditions)
    FindSlots(condition, shape);
  const auto isFound = [](const Slot& slot) { return slot.literal != nullptr; };
  m_hasMarks = std::all_of(m_slots.begin(), m_slots.end(), isFound) &&
               statement.find(StatementShape::kPlaceholder) == std::string_view::npos;
  for (std::size_t i = 0; m_hasMarks && i < m_slots.size(); ++i)
    m_slots[i].literal->text = MarkOf(i);
  m_plan = MakePlan(m_query);
  m_executor.Prepare();
  m_servesShape = m_hasMarks && KeepsPlan();
}

void PreparedSelect::FindSlots(BoundExpression& expression, const StatementShape& shape) {
  if (expression.kind == Kind::Literal && expression.literal.As<std::int32_t>() != nullptr) {
    const auto* const end = shape.places.begin() + shape.numbers.count;
    const auto* const found = std::find(shape.places.begin(), end, expression.place);
    if (found != end)
      m_slots[static_cast<std::size_t>(found - shape.places.begin())] = {&expression, expression.negated};
  }
  // The pattern of a like is made ready once and for all.
  const std::size_t count = expression.pattern ? 1 : expression.operands.size();
  for (std::size_t i = 0; i < count; ++i)
    FindSlots(expression.operands[i], shape);
}

// Whether the plan is right for any numbers: an index must be able to find every one of them.
bool PreparedSelect::KeepsPlan() const {
  for (const Step& step : m_plan.steps) {
    if (!step.access) continue;
    const Table& table = *m_query.sources[step.source].table;
    const std::vector<std::size_t>& columns = table.IndexColumns(step.access->index);
    for (std::size_t i = 0; i < step.access->equal.size(); ++i) {
      const auto isIt = [&](const Slot& slot) { return slot.literal == step.access->equal[i]; };
      if (std::any_of(m_slots.begin(), m_slots.end(), isIt) &&
          !HasKeysOfWholeNumbers(table.Definition().columns[columns[i]].type))
        return false;
    }
  }
  return true;
}

bool PreparedSelect::Put(const StatementNumbers& numbers) {
  if (numbers.count != m_slots.size()) return false;
  for (std::size_t i = 0; i < m_slots.size(); ++i)
    m_slots[i].literal->literal = Signed(numbers.values[i], m_slots[i].negative);
  return true;
}

std::string PreparedSelect::Explain(const StatementNumbers& numbers) const {
  std::string text;
  for (std::size_t i = 0; i < m_plan.text.size(); ++i) {
    if (m_plan.text[i] != StatementShape::kPlaceholder || !m_hasMarks) {
      text += m_plan.text[i];
      continue;
    }
    const auto slot = static_cast<std::size_t>(m_plan.text[++i] - '0');
    text += std::to_string(Signed(numbers.values[slot], m_slots[slot].negative));
  }
  return text;
}

}  // namespace jet::sql
