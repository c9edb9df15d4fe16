#pragma once

#include <string>
#include <vector>

#include "jet/Value.h"

/// A statement as it was written, before its names are looked up.
namespace jet::sql {

struct ColumnName {
  std::string table;  ///< what stands before the dot; empty: nothing
  std::string name;
};

enum class Comparison { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };

/// Operators that give a value.
enum class Operator { Add, Subtract, Multiply, Divide, DivideWhole, Modulo, Power, Join, Negate };

/// Functions of rules and defaults: the day, the moment and the time of day in local time, the characters of
/// a text, and one of two values.
enum class Function { Date, Now, Time, Len, If };

struct Expression {
  enum class Kind {
    Column,
    Literal,
    Compare,     ///< two operands
    Like,        ///< text and pattern
    IsNull,      ///< one operand
    And,         ///< two or more
    Or,          ///< two or more
    Not,         ///< one
    Arithmetic,  ///< two, one of Negate
    Call,        ///< those of the function
  };
  Kind kind = Kind::Literal;
  ColumnName column;
  Value literal;
  std::size_t place = 0;  ///< of a literal: where it stands in the statement, without its sign
  bool negated = false;   ///< a number behind a minus
  Comparison comparison = Comparison::Equal;
  Operator arithmetic = Operator::Add;
  Function function = Function::Date;
  std::vector<Expression> operands;
};

enum class Aggregate { None, Count, Max, Min, Sum, Average };

/// What stands between two commas of the select list.
struct SelectItem {
  Aggregate aggregate = Aggregate::None;
  bool star = false;  ///< `*`, `t.*` or `count(*)`; `column.table` is t
  ColumnName column;
  std::string alias;  ///< empty: none
};

struct TableReference {
  std::string name;
  std::string alias;  ///< empty: none
};

struct OrderItem {
  ColumnName column;
  bool ascending = true;
};

struct SelectStatement {
  std::vector<SelectItem> items;
  std::vector<TableReference> tables;  ///< in the order of the from clause, joined to each other
  std::vector<Expression> conditions;  ///< all must hold: those of the joins, then that of the where clause
  std::vector<OrderItem> order;
};

/// The column, the literal or a few words about another expression, for messages.
std::string Describe(const Expression& expression);
std::string Describe(const ColumnName& column);

}  // namespace jet::sql
