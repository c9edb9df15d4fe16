#include "jet/sql/Evaluator.h"

#include <cmath>
#include <compare>
#include <utility>

#include "jet/format/SortKey.h"
#include "jet/format/TextCodec.h"
#include "jet/sql/Arithmetic.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

using Kind = Expression::Kind;

Truth ToTruth(bool holds) {
  return holds ? Truth::True : Truth::False;
}

Truth TruthOf(const Value& value) {
  if (value.IsNull()) return Truth::Unknown;
  if (const auto* yes = value.As<bool>()) return ToTruth(*yes);
  return ToTruth(CompareNumbers(value, Value(std::int32_t{0})) != 0);
}

Truth Decide(Comparison comparison, std::strong_ordering order) {
  switch (comparison) {
    case Comparison::Equal:
      return ToTruth(order == 0);
    case Comparison::NotEqual:
      return ToTruth(order != 0);
    case Comparison::Less:
      return ToTruth(order < 0);
    case Comparison::LessOrEqual:
      return ToTruth(order <= 0);
    case Comparison::Greater:
      return ToTruth(order > 0);
    case Comparison::GreaterOrEqual:
      return ToTruth(order >= 0);
  }
  return Truth::Unknown;
}

}  // namespace

Truth Evaluator::Test(const BoundExpression& condition) {
  switch (condition.kind) {
    case Kind::Compare:
      return Compare(condition);
    case Kind::Like:
      return Like(condition);
    case Kind::IsNull:
      return ToTruth(IsNull(condition.operands[0]));
    case Kind::Not: {
      const Truth inner = Test(condition.operands[0]);
      return inner == Truth::Unknown ? inner : ToTruth(inner == Truth::False);
    }
    case Kind::And:
    case Kind::Or: {
      // One operand that decides is enough, whatever the others are.
      const Truth deciding = condition.kind == Kind::And ? Truth::False : Truth::True;
      Truth result = deciding == Truth::False ? Truth::True : Truth::False;
      for (const BoundExpression& operand : condition.operands) {
        const Truth truth = Test(operand);
        if (truth == deciding) return deciding;
        if (truth == Truth::Unknown) result = Truth::Unknown;
      }
      return result;
    }
    case Kind::Column:
    case Kind::Literal:
    case Kind::Arithmetic:
    case Kind::Call:
      return TruthOf(Evaluate(condition));
  }
  return Truth::Unknown;
}

Value Evaluator::Evaluate(const BoundExpression& expression) {
  if (expression.kind == Kind::Literal) return expression.literal;
  if (expression.kind == Kind::Column) return m_rows->Read(expression.column.place);
  if (expression.kind == Kind::Arithmetic || expression.kind == Kind::Call) return Calculate(expression);
  const Truth truth = Test(expression);
  return truth == Truth::Unknown ? Value() : Value(truth == Truth::True);
}

// Operands have an evaluator of their own: the texts of a comparison that this is a part of stay as they are.
Value Evaluator::Calculate(const BoundExpression& expression) {
  Evaluator inner(*m_rows);
  const auto operand = [&](std::size_t i) { return inner.Evaluate(expression.operands[i]); };
  if (expression.kind == Kind::Arithmetic) {
    return expression.arithmetic == Operator::Negate
               ? sql::Calculate(Operator::Subtract, Value(std::int32_t{0}), operand(0))
               : sql::Calculate(expression.arithmetic, operand(0), operand(1));
  }
  switch (expression.function) {
    case Function::Date:
      return DateTime{std::floor(LocalNow().days)};
    case Function::Now:
      return LocalNow();
    case Function::Time:
      return DateTime{LocalNow().days - std::floor(LocalNow().days)};
    case Function::Len: {
      const Value value = operand(0);
      if (value.IsNull()) return {};
      return static_cast<std::int32_t>(format::Utf16Length(value.ToText()));
    }
    case Function::If:
      return operand(inner.Holds(expression.operands[0]) ? 1 : 2);
  }
  return {};
}

bool Evaluator::IsNull(const BoundExpression& operand) {
  if (operand.kind == Kind::Column && operand.valueKind == ValueKind::Text)
    return !m_rows->ReadText(operand.column.place, m_left).has_value();
  return Evaluate(operand).IsNull();
}

// The text of an operand, in `buffer` if it is nowhere else; none for Null.
std::optional<std::string_view> Evaluator::TextOf(const BoundExpression& operand, std::string& buffer) {
  if (operand.kind == Kind::Column && operand.valueKind == ValueKind::Text)
    return m_rows->ReadText(operand.column.place, buffer);
  if (const auto* text = operand.literal.As<std::string>()) return *text;
  const Value value = Evaluate(operand);
  if (value.IsNull()) return std::nullopt;
  buffer = value.ToText();
  return buffer;
}

Truth Evaluator::Compare(const BoundExpression& comparison) {
  const BoundExpression& left = comparison.operands[0];
  const BoundExpression& right = comparison.operands[1];
  if (left.valueKind == ValueKind::Null || right.valueKind == ValueKind::Null) return Truth::Unknown;
  if (left.valueKind == ValueKind::Text) {
    const std::optional<std::string_view> leftText = TextOf(left, m_left);
    if (!leftText) return Truth::Unknown;
    const std::optional<std::string_view> rightText = TextOf(right, m_right);
    if (!rightText) return Truth::Unknown;
    return Decide(comparison.comparison, format::CompareText(*leftText, *rightText));
  }
  const Value leftValue = Evaluate(left);
  if (leftValue.IsNull()) return Truth::Unknown;
  if (right.kind == Kind::Literal) {
    const auto* const number = leftValue.As<std::int32_t>();
    const auto* const literal = right.literal.As<std::int32_t>();
    if (number != nullptr && literal != nullptr) return Decide(comparison.comparison, *number <=> *literal);
    return Decide(comparison.comparison, CompareValues(leftValue, right.literal));
  }
  const Value rightValue = Evaluate(right);
  if (rightValue.IsNull()) return Truth::Unknown;
  return Decide(comparison.comparison, CompareValues(leftValue, rightValue));
}

Truth Evaluator::Like(const BoundExpression& like) {
  const std::optional<std::string_view> text = TextOf(like.operands[0], m_left);
  if (!text) return Truth::Unknown;
  if (like.pattern) return ToTruth(like.pattern->Matches(*text));
  const std::optional<std::string_view> pattern = TextOf(like.operands[1], m_right);
  if (!pattern) return Truth::Unknown;
  return ToTruth(LikePattern(*pattern).Matches(*text));
}

}  // namespace jet::sql
