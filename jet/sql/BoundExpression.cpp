#include "jet/sql/BoundExpression.h"

#include <utility>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/sql/Literals.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

using Kind = Expression::Kind;

BoundExpression Bind(const Expression& expression, const NameScope& scope);

void NeedCondition(const Expression& expression, ValueKind kind) {
  if (kind == ValueKind::Number || kind == ValueKind::Null) return;
  throw Error(ErrorNumber::TypeMismatch,
              Describe(expression) + " is " + NameOf(kind) + " and cannot be taken for true or false.");
}

// A number with decimals meets floating numbers as the floating number that it stands for: 0.1 finds 0.1.
void AdaptLiteral(BoundExpression& literal, const BoundExpression& other) {
  if (literal.kind != Kind::Literal || literal.literal.As<Decimal>() == nullptr || other.kind != Kind::Column)
    return;
  if (other.column.type == ColumnType::Single || other.column.type == ColumnType::Double)
    literal.literal = ToDouble(literal.literal);
}

// A text that says a GUID meets GUIDs as that GUID.
void TakeForGuid(BoundExpression& literal, const BoundExpression& other) {
  const auto* const text = literal.kind == Kind::Literal ? literal.literal.As<std::string>() : nullptr;
  if (text == nullptr || other.valueKind != ValueKind::Guid) return;
  const std::optional<Guid> guid = ParseGuid(Trim(*text));
  if (!guid) return;
  literal.literal = *guid;
  literal.valueKind = ValueKind::Guid;
}

void BindComparison(const Expression& expression, BoundExpression& bound) {
  BoundExpression& left = bound.operands[0];
  BoundExpression& right = bound.operands[1];
  TakeForGuid(left, right);
  TakeForGuid(right, left);
  if (left.valueKind != right.valueKind && left.valueKind != ValueKind::Null &&
      right.valueKind != ValueKind::Null) {
    throw Error(ErrorNumber::TypeMismatch, Describe(expression.operands[0]) + ", " + NameOf(left.valueKind) +
                                               ", cannot be compared with " +
                                               Describe(expression.operands[1]) + ", " +
                                               NameOf(right.valueKind) + ".");
  }
  AdaptLiteral(left, right);
  AdaptLiteral(right, left);
}

void BindLike(const Expression& expression, BoundExpression& bound) {
  for (std::size_t i = 0; i < 2; ++i) {
    if (bound.operands[i].valueKind != ValueKind::Binary) continue;
    throw Error(ErrorNumber::TypeMismatch,
                Describe(expression.operands[i]) + " is binary data and fits no like.");
  }
  const BoundExpression& pattern = bound.operands[1];
  if (pattern.kind == Kind::Literal && !pattern.literal.IsNull())
    bound.pattern.emplace(pattern.literal.ToText());
}

[[noreturn]] void RaiseNoResult(const BoundExpression& left, const BoundExpression& right) {
  throw Error(ErrorNumber::TypeMismatch, std::string("There is no such arithmetic with ") +
                                             NameOf(left.valueKind) + " and " + NameOf(right.valueKind) +
                                             ".");
}

ValueKind KindOfResult(Operator arithmetic, const BoundExpression& left, const BoundExpression& right) {
  const ValueKind a = left.valueKind;
  const ValueKind b = right.valueKind;
  if (a == ValueKind::Binary || b == ValueKind::Binary) RaiseNoResult(left, right);
  if (arithmetic == Operator::Join) return ValueKind::Text;
  const bool adds = arithmetic == Operator::Add || arithmetic == Operator::Subtract;
  const auto isNumber = [](ValueKind kind) { return kind == ValueKind::Number || kind == ValueKind::Null; };
  const auto isTime = [&](ValueKind kind) { return kind == ValueKind::Date || isNumber(kind); };
  if (isNumber(a) && isNumber(b)) return ValueKind::Number;
  if (arithmetic == Operator::Subtract && a == ValueKind::Date && b == ValueKind::Date)
    return ValueKind::Number;
  if (adds && isTime(a) && isTime(b)) return ValueKind::Date;
  if (arithmetic == Operator::Add && a == ValueKind::Text && b == ValueKind::Text) return ValueKind::Text;
  RaiseNoResult(left, right);
}

ValueKind KindOfCall(const Expression& expression, const BoundExpression& call) {
  switch (call.function) {
    case Function::Date:
    case Function::Now:
    case Function::Time:
      return ValueKind::Date;
    case Function::Len:
      if (call.operands[0].valueKind == ValueKind::Binary) RaiseNoResult(call.operands[0], call.operands[0]);
      return ValueKind::Number;
    case Function::If:
      break;
  }
  NeedCondition(expression.operands[0], call.operands[0].valueKind);
  const ValueKind yes = call.operands[1].valueKind;
  const ValueKind no = call.operands[2].valueKind;
  if (yes != no && yes != ValueKind::Null && no != ValueKind::Null)
    RaiseNoResult(call.operands[1], call.operands[2]);
  return yes == ValueKind::Null ? no : yes;
}

BoundExpression Bind(const Expression& expression, const NameScope& scope) {
  BoundExpression bound;
  bound.kind = expression.kind;
  for (const Expression& operand : expression.operands)
    bound.operands.push_back(Bind(operand, scope));
  bound.valueKind = ValueKind::Number;
  switch (expression.kind) {
    case Kind::Column:
      bound.column = scope.Resolve(expression.column);
      bound.valueKind = KindOf(bound.column.type);
      bound.text = Describe(expression);
      break;
    case Kind::Literal:
      bound.literal = expression.literal;
      bound.place = expression.place;
      bound.negated = expression.negated;
      bound.valueKind = KindOf(bound.literal);
      bound.text = Describe(expression);
      break;
    case Kind::Compare:
      bound.comparison = expression.comparison;
      BindComparison(expression, bound);
      break;
    case Kind::Like:
      BindLike(expression, bound);
      break;
    case Kind::IsNull:
      break;
    case Kind::And:
    case Kind::Or:
    case Kind::Not:
      for (std::size_t i = 0; i < bound.operands.size(); ++i)
        NeedCondition(expression.operands[i], bound.operands[i].valueKind);
      break;
    case Kind::Arithmetic:
      bound.arithmetic = expression.arithmetic;
      bound.valueKind = KindOfResult(bound.arithmetic, bound.operands.front(), bound.operands.back());
      break;
    case Kind::Call:
      bound.function = expression.function;
      bound.valueKind = KindOfCall(expression, bound);
      break;
  }
  return bound;
}

}  // namespace

BoundExpression BindCondition(const Expression& condition, const NameScope& scope) {
  BoundExpression bound = Bind(condition, scope);
  NeedCondition(condition, bound.valueKind);
  return bound;
}

BoundExpression BindExpression(const Expression& expression, const NameScope& scope) {
  return Bind(expression, scope);
}

}  // namespace jet::sql
