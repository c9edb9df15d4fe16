#include "jet/sql/Parser.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/sql/Lexer.h"
#include "jet/sql/Literals.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

using Kind = Expression::Kind;

// Words that are no names unless they stand in brackets or behind a dot.
constexpr std::string_view kReservedWords[] = {
    "select", "from",  "where",    "order", "by",   "inner", "join",  "on",    "and",    "or",
    "not",    "like",  "is",       "null",  "as",   "asc",   "desc",  "true",  "false",  "group",
    "having", "union", "distinct", "top",   "left", "right", "outer", "cross", "between"};

constexpr std::pair<std::string_view, Aggregate> kAggregates[] = {{"count", Aggregate::Count},
                                                                  {"max", Aggregate::Max},
                                                                  {"min", Aggregate::Min},
                                                                  {"sum", Aggregate::Sum},
                                                                  {"avg", Aggregate::Average}};

bool IsReserved(std::string_view word) {
  return std::any_of(std::begin(kReservedWords), std::end(kReservedWords),
                     [word](std::string_view reserved) { return SameWord(word, reserved); });
}

/// The value with the other sign.
Value Negative(const Value& number) {
  if (const auto* whole = number.As<std::int32_t>()) return -*whole;  // a literal has no sign, so this fits
  if (const auto* floating = number.As<double>()) return -*floating;
  Decimal decimal = number.As<Decimal>() != nullptr ? *number.As<Decimal>() : Decimal{};
  decimal.negative = !decimal.negative;
  return decimal;
}

/// Reads by recursive descent, a token ahead.
class Parser {
 public:
  /// `isRule`: with what rules and defaults have besides the select dialect.
  explicit Parser(std::string_view text, bool isRule = false)
      : m_text(text), m_lexer(text), m_isRule(isRule) {
    if (text.size() > kMaxStatementLength) {
      throw Error(ErrorNumber::SyntaxErrorInExpression, "The statement is longer than " +
                                                            std::to_string(kMaxStatementLength / 1024) +
                                                            " KiB, the most that the engine takes.");
    }
    Advance();
  }

  SelectStatement Select();
  Expression Criterion();
  Expression ColumnRule(const std::string& column);
  Expression WholeValue();

 private:
  void Advance() { m_token = m_lexer.Next(); }
  bool Is(Token::Kind kind) const { return m_token.kind == kind; }
  bool IsWord(std::string_view word) const { return Is(Token::Kind::Word) && SameWord(m_token.text, word); }
  bool Take(Token::Kind kind);
  bool TakeWord(std::string_view word);
  [[noreturn]] void Raise(const std::string& expected) const;

  std::string Name(const char* what);
  ColumnName Column();
  SelectItem Item();
  void From(SelectStatement& statement);
  void Joined(SelectStatement& statement);
  void TableOrGroup(SelectStatement& statement);
  OrderItem Order();
  void End();

  Expression Or();
  Expression And();
  Expression Not();
  Expression Predicate();
  Expression Operand();
  bool BeginsWithoutLeftSide() const;
  void CountOperator();
  Expression LeftSide(bool& isWhole);
  Expression Between(Expression left);
  Expression In(Expression left);
  Expression Calculation(std::size_t level = 0);
  Expression Signed();
  Expression RaisedToPower();
  Expression Primary();
  Expression Call(std::string_view name);
  Expression Chain(Kind kind, std::string_view word, Expression (Parser::*part)());

  /// Counts nesting for as long as it lives.
  class Nested {
   public:
    explicit Nested(Parser& parser) : m_parser(&parser) {
      if (++m_parser->m_depth > kMaxNesting) {
        --m_parser->m_depth;
        throw Error(m_parser->m_error,
                    "The statement is nested deeper than " + std::to_string(kMaxNesting) + " parentheses.");
      }
    }
    ~Nested() { --m_parser->m_depth; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

   private:
    Parser* m_parser;
  };

  std::string_view m_text;
  Lexer m_lexer;
  Token m_token;
  bool m_isRule;
  std::optional<Expression> m_subject;  // the column that comparisons without a left side are of
  ErrorNumber m_error = ErrorNumber::SyntaxErrorInExpression;
  int m_depth = 0;
  int m_operators = 0;
};

bool Parser::Take(Token::Kind kind) {
  if (!Is(kind)) return false;
  Advance();
  return true;
}

bool Parser::TakeWord(std::string_view word) {
  if (!IsWord(word)) return false;
  Advance();
  return true;
}

void Parser::Raise(const std::string& expected) const {
  const char* const where =
      m_error == ErrorNumber::SyntaxErrorInFrom ? "Syntax error in the from clause" : "Syntax error";
  if (Is(Token::Kind::End))
    throw Error(m_error, std::string(where) + " at the end of the statement: " + expected + ".");
  const std::size_t shown = std::min<std::size_t>(m_token.end - m_token.begin, 40);
  const std::string why = Is(Token::Kind::Invalid) ? m_token.text : expected;
  throw Error(m_error, std::string(where) + " at " + std::string(m_text.substr(m_token.begin, shown)) +
                           " (position " + std::to_string(m_token.begin + 1) + "): " + why + ".");
}

SelectStatement Parser::Select() {
  if (!TakeWord("select")) {
    throw Error(ErrorNumber::NotASelect,
                "The statement does not begin with 'select'; the engine runs select statements only.");
  }
  SelectStatement statement;
  do {
    statement.items.push_back(Item());
  } while (Take(Token::Kind::Comma));
  if (!IsWord("from") && !Is(Token::Kind::End)) Raise("expected ',' or 'from'");
  m_error = ErrorNumber::SyntaxErrorInFrom;
  if (!TakeWord("from")) Raise("expected 'from'");
  From(statement);
  m_error = ErrorNumber::SyntaxErrorInExpression;
  if (TakeWord("where")) statement.conditions.push_back(Or());
  if (TakeWord("order")) {
    if (!TakeWord("by")) Raise("expected 'by'");
    do {
      statement.order.push_back(Order());
    } while (Take(Token::Kind::Comma));
  }
  End();
  return statement;
}

Expression Parser::Criterion() {
  Expression criterion = Or();
  End();
  return criterion;
}

void Parser::End() {
  Take(Token::Kind::Semicolon);
  if (!Is(Token::Kind::End)) Raise("expected the end of the statement");
}

std::string Parser::Name(const char* what) {
  const bool isName = Is(Token::Kind::Name) || (Is(Token::Kind::Word) && !IsReserved(m_token.text));
  if (!isName || m_token.text.empty()) Raise(std::string("expected ") + what);
  std::string name = std::move(m_token.text);
  Advance();
  return name;
}

ColumnName Parser::Column() {
  ColumnName column;
  column.name = Name("the name of a column");
  if (Take(Token::Kind::Dot)) {
    column.table = std::move(column.name);
    if ((!Is(Token::Kind::Name) && !Is(Token::Kind::Word)) || m_token.text.empty())
      Raise("expected the name of a column");
    column.name = std::move(m_token.text);
    Advance();
  }
  return column;
}

SelectItem Parser::Item() {
  SelectItem item;
  if (Take(Token::Kind::Star)) {
    item.star = true;
    return item;
  }
  const bool isPlainWord = Is(Token::Kind::Word);
  item.column.name = Name("a column or '*'");
  if (isPlainWord && Is(Token::Kind::Open)) {
    const auto* const found =
        std::find_if(std::begin(kAggregates), std::end(kAggregates),
                     [&](const auto& aggregate) { return SameWord(aggregate.first, item.column.name); });
    if (found == std::end(kAggregates)) Raise("there is no function '" + item.column.name + "'");
    Advance();
    item.aggregate = found->second;
    item.column = {};
    if (item.aggregate == Aggregate::Count && Take(Token::Kind::Star)) {
      item.star = true;
    } else {
      item.column = Column();
    }
    if (!Take(Token::Kind::Close)) Raise("expected ')'");
  } else if (Take(Token::Kind::Dot)) {
    item.column.table = std::move(item.column.name);
    if (Take(Token::Kind::Star)) {
      item.star = true;
      return item;
    }
    if ((!Is(Token::Kind::Name) && !Is(Token::Kind::Word)) || m_token.text.empty())
      Raise("expected the name of a column");
    item.column.name = std::move(m_token.text);
    Advance();
  }
  if (TakeWord("as")) item.alias = Name("a name for the column");
  return item;
}

void Parser::From(SelectStatement& statement) {
  Joined(statement);
  const bool ends = Is(Token::Kind::End) || Is(Token::Kind::Semicolon) || IsWord("where") || IsWord("order");
  if (!ends) Raise("expected 'inner join', 'where', 'order by' or the end of the statement");
}

void Parser::Joined(SelectStatement& statement) {
  TableOrGroup(statement);
  while (IsWord("inner") || IsWord("join")) {
    TakeWord("inner");
    if (!TakeWord("join")) Raise("expected 'join'");
    TableOrGroup(statement);
    if (!TakeWord("on")) Raise("expected 'on'");
    m_error = ErrorNumber::SyntaxErrorInExpression;
    statement.conditions.push_back(Or());
    m_error = ErrorNumber::SyntaxErrorInFrom;
  }
}

void Parser::TableOrGroup(SelectStatement& statement) {
  if (Take(Token::Kind::Open)) {
    const Nested nested(*this);
    Joined(statement);
    if (!Take(Token::Kind::Close)) Raise("expected ')'");
    return;
  }
  TableReference table;
  table.name = Name("the name of a table");
  const bool hasAlias = TakeWord("as");
  if (hasAlias || Is(Token::Kind::Name) || (Is(Token::Kind::Word) && !IsReserved(m_token.text)))
    table.alias = Name("another name for the table");
  statement.tables.push_back(std::move(table));
}

OrderItem Parser::Order() {
  OrderItem item;
  item.column = Column();
  if (TakeWord("desc")) {
    item.ascending = false;
  } else {
    TakeWord("asc");
  }
  return item;
}

// Chains of one operator become one flat expression: they may be long, and the tree must stay shallow.
Expression Parser::Chain(Kind kind, std::string_view word, Expression (Parser::*part)()) {
  Expression first = (this->*part)();
  if (!IsWord(word)) return first;
  Expression chain;
  chain.kind = kind;
  chain.operands.push_back(std::move(first));
  while (TakeWord(word))
    chain.operands.push_back((this->*part)());
  return chain;
}

Expression Parser::Or() {
  return Chain(Kind::Or, "or", &Parser::And);
}
Expression Parser::And() {
  return Chain(Kind::And, "and", &Parser::Not);
}

namespace {
Expression Unary(Kind kind, Expression operand) {
  Expression expression;
  expression.kind = kind;
  expression.operands.push_back(std::move(operand));
  return expression;
}
Expression Binary(Kind kind, Expression left, Expression right) {
  Expression expression = Unary(kind, std::move(left));
  expression.operands.push_back(std::move(right));
  return expression;
}

std::optional<Comparison> ComparisonOf(Token::Kind kind) {
  switch (kind) {
    case Token::Kind::Equal:
      return Comparison::Equal;
    case Token::Kind::NotEqual:
      return Comparison::NotEqual;
    case Token::Kind::Less:
      return Comparison::Less;
    case Token::Kind::LessOrEqual:
      return Comparison::LessOrEqual;
    case Token::Kind::Greater:
      return Comparison::Greater;
    case Token::Kind::GreaterOrEqual:
      return Comparison::GreaterOrEqual;
    default:
      return std::nullopt;
  }
}
bool NamesColumn(const Expression& expression) {
  return expression.kind == Kind::Column || std::ranges::any_of(expression.operands, NamesColumn);
}
}  // namespace

Expression Parser::Not() {
  if (!TakeWord("not")) return Predicate();
  const Nested nested(*this);
  return Unary(Kind::Not, Not());
}

// Whether a predicate of a column's rule begins with its operator.
bool Parser::BeginsWithoutLeftSide() const {
  return ComparisonOf(m_token.kind).has_value() || IsWord("is") || IsWord("like") || IsWord("between") ||
         IsWord("in");
}

// What a predicate begins with; `isWhole` when it is the whole predicate.
Expression Parser::LeftSide(bool& isWhole) {
  if (!m_subject) return m_isRule ? Calculation() : Operand();
  if (BeginsWithoutLeftSide()) return *m_subject;
  if (Take(Token::Kind::Open)) {
    const Nested nested(*this);
    Expression inside = Or();
    if (!Take(Token::Kind::Close)) Raise("expected ')', 'and' or 'or'");
    if (!Is(Token::Kind::End) && !Is(Token::Kind::Close) && !IsWord("and") && !IsWord("or"))
      Raise("expected 'and' or 'or'");
    isWhole = true;
    return inside;
  }
  return Calculation();
}

Expression Parser::Predicate() {
  bool isWhole = false;
  Expression left = LeftSide(isWhole);
  if (isWhole) return left;
  // What follows is not a separate predicate.
  const std::optional<Expression> subject = std::exchange(m_subject, std::nullopt);
  const auto whole = [&](Expression predicate, bool negated) {
    m_subject = subject;
    return negated ? Unary(Kind::Not, std::move(predicate)) : std::move(predicate);
  };
  const auto right = [&] { return m_isRule ? Calculation() : Operand(); };
  if (const std::optional<Comparison> comparison = ComparisonOf(m_token.kind)) {
    Advance();
    Expression result = Binary(Kind::Compare, std::move(left), right());
    result.comparison = *comparison;
    return whole(std::move(result), false);
  }
  if (TakeWord("is")) {
    const bool negated = TakeWord("not");
    if (!TakeWord("null")) Raise("expected 'null'");
    return whole(Unary(Kind::IsNull, std::move(left)), negated);
  }
  const bool negated = TakeWord("not");
  if (TakeWord("like")) return whole(Binary(Kind::Like, std::move(left), right()), negated);
  if (m_isRule && TakeWord("between")) return whole(Between(std::move(left)), negated);
  if (m_isRule && TakeWord("in")) return whole(In(std::move(left)), negated);
  if (negated) Raise("expected 'like'");
  const bool isValue = left.kind == Kind::Literal || left.kind == Kind::Arithmetic || left.kind == Kind::Call;
  if (subject && isValue && !NamesColumn(left)) left = Binary(Kind::Compare, *subject, std::move(left));
  return whole(std::move(left), false);
}

Expression Parser::Between(Expression left) {
  Expression least = Binary(Kind::Compare, left, Calculation());
  least.comparison = Comparison::GreaterOrEqual;
  if (!TakeWord("and")) Raise("expected 'and'");
  Expression most = Binary(Kind::Compare, std::move(left), Calculation());
  most.comparison = Comparison::LessOrEqual;
  return Binary(Kind::And, std::move(least), std::move(most));
}

Expression Parser::In(Expression left) {
  if (!Take(Token::Kind::Open)) Raise("expected '('");
  Expression any;
  any.kind = Kind::Or;
  do {
    any.operands.push_back(Binary(Kind::Compare, left, Calculation()));
  } while (Take(Token::Kind::Comma));
  if (!Take(Token::Kind::Close)) Raise("expected ',' or ')'");
  return any;
}

namespace {

struct OperatorSign {
  Token::Kind token;
  Operator meaning;
};

// Operators with two operands, those that bind least first.
const std::vector<std::vector<OperatorSign>> kOperators = {
    {{Token::Kind::Ampersand, Operator::Join}},
    {{Token::Kind::Plus, Operator::Add}, {Token::Kind::Minus, Operator::Subtract}},
    {{Token::Kind::Word, Operator::Modulo}},  // the only one that is a word: mod
    {{Token::Kind::Backslash, Operator::DivideWhole}},
    {{Token::Kind::Star, Operator::Multiply}, {Token::Kind::Slash, Operator::Divide}},
};

Expression Arithmetic(Operator meaning, Expression left, std::optional<Expression> right) {
  Expression result = Unary(Kind::Arithmetic, std::move(left));
  result.arithmetic = meaning;
  if (right) result.operands.push_back(*std::move(right));
  return result;
}

struct FunctionName {
  std::string_view name;
  Function function;
  std::size_t operands;
};
constexpr FunctionName kFunctions[] = {{"date", Function::Date, 0},
                                       {"now", Function::Now, 0},
                                       {"time", Function::Time, 0},
                                       {"len", Function::Len, 1},
                                       {"iif", Function::If, 3}};

}  // namespace

// A chain of operators makes a tree as deep as it is long.
void Parser::CountOperator() {
  if (++m_operators > kMaxOperators)
    Raise("an expression has at most " + std::to_string(kMaxOperators) + " operators");
}

Expression Parser::Calculation(std::size_t level) {
  if (level == kOperators.size()) return Signed();
  Expression left = Calculation(level + 1);
  for (;;) {
    const auto& signs = kOperators[level];
    const auto sign = std::ranges::find_if(signs, [&](const OperatorSign& candidate) {
      return Is(candidate.token) && (candidate.meaning != Operator::Modulo || IsWord("mod"));
    });
    if (sign == signs.end()) return left;
    Advance();
    CountOperator();
    left = Arithmetic(sign->meaning, std::move(left), Calculation(level + 1));
  }
}

Expression Parser::Signed() {
  if (!Is(Token::Kind::Plus) && !Is(Token::Kind::Minus)) return RaisedToPower();
  const Nested nested(*this);
  const bool negative = Is(Token::Kind::Minus);
  Advance();
  Expression operand = Signed();
  if (!negative) return operand;
  if (operand.kind != Kind::Literal || !IsNumber(operand.literal) || operand.literal.As<bool>() != nullptr ||
      operand.literal == Value(std::numeric_limits<std::int32_t>::min()))
    return Arithmetic(Operator::Negate, std::move(operand), std::nullopt);
  operand.literal = Negative(operand.literal);
  return operand;
}

Expression Parser::RaisedToPower() {
  Expression left = Primary();
  while (Take(Token::Kind::Caret)) {
    CountOperator();
    left = Arithmetic(Operator::Power, std::move(left), Signed());
  }
  return left;
}

Expression Parser::Primary() {
  Expression primary;
  for (const auto& [word, meaning] :
       {std::pair("yes", true), std::pair("on", true), std::pair("no", false), std::pair("off", false)}) {
    if (!TakeWord(word)) continue;
    primary.literal = meaning;
    return primary;
  }
  if (Is(Token::Kind::Word)) {
    const std::string name = m_token.text;
    const Token token = m_token;
    const Lexer lexer = m_lexer;
    Advance();
    if (Is(Token::Kind::Open)) return Call(name);
    m_token = token;
    m_lexer = lexer;
  }
  return Operand();
}

// The call of a function, from its parenthesis on.
Expression Parser::Call(std::string_view name) {
  const auto* const found = std::ranges::find_if(
      kFunctions, [&](const FunctionName& candidate) { return SameWord(candidate.name, name); });
  if (found == std::end(kFunctions)) Raise("there is no function '" + std::string(name) + "'");
  Advance();
  const Nested nested(*this);
  const std::optional<Expression> subject = std::exchange(m_subject, std::nullopt);
  Expression call;
  call.kind = Kind::Call;
  call.function = found->function;
  for (std::size_t i = 0; i < found->operands; ++i) {
    if (i > 0 && !Take(Token::Kind::Comma)) Raise("expected ','");
    call.operands.push_back(Or());
  }
  if (!Take(Token::Kind::Close)) Raise("expected ')'");
  m_subject = subject;
  return call;
}

Expression Parser::ColumnRule(const std::string& column) {
  m_subject.emplace();
  m_subject->kind = Kind::Column;
  m_subject->column.name = column;
  return Criterion();
}

Expression Parser::WholeValue() {
  Take(Token::Kind::Equal);
  return Criterion();
}

Expression Parser::Operand() {
  if (Take(Token::Kind::Open)) {
    const Nested nested(*this);
    Expression inside = Or();
    if (!Take(Token::Kind::Close)) Raise("expected ')', 'and' or 'or'");
    return inside;
  }
  Expression operand;
  if (Is(Token::Kind::Plus) || Is(Token::Kind::Minus)) {
    const bool negative = Is(Token::Kind::Minus);
    Advance();
    if (!Is(Token::Kind::Literal) || !IsNumber(m_token.value)) Raise("expected a number behind the sign");
    operand.literal = negative ? Negative(m_token.value) : m_token.value;
    operand.place = m_token.begin;
    operand.negated = negative;
    Advance();
  } else if (Is(Token::Kind::Literal)) {
    operand.literal = std::move(m_token.value);
    operand.place = m_token.begin;
    Advance();
  } else if (IsWord("true") || IsWord("false")) {
    operand.literal = IsWord("true");
    Advance();
  } else if (!TakeWord("null")) {
    if (!Is(Token::Kind::Word) && !Is(Token::Kind::Name)) Raise("expected a column, a number or a text");
    operand.kind = Kind::Column;
    operand.column = Column();
    if (Is(Token::Kind::Open)) Raise("functions cannot stand in a condition");
  }
  return operand;
}

}  // namespace

SelectStatement ParseSelect(std::string_view text) {
  return Parser(text).Select();
}

Expression ParseCriterion(std::string_view text) {
  return Parser(text).Criterion();
}

Expression ParseTableRule(std::string_view text) {
  return Parser(text, true).Criterion();
}

Expression ParseColumnRule(std::string_view text, const std::string& column) {
  return Parser(text, true).ColumnRule(column);
}

Expression ParseValue(std::string_view text) {
  return Parser(text, true).WholeValue();
}

}  // namespace jet::sql
