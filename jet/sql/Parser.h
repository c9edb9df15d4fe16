#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "jet/sql/Ast.h"

namespace jet::sql {

/// Longest statement, in bytes.
inline constexpr std::size_t kMaxStatementLength = std::size_t{64} * 1024;
/// Deepest nesting of parentheses and `not` in a statement.
inline constexpr int kMaxNesting = 200;
/// Most operators of arithmetic in a rule or default.
inline constexpr int kMaxOperators = 500;

/// Reads a select statement. Raises NotASelect for anything else, SyntaxErrorInFrom for a mistake in the from
/// clause, SyntaxErrorInExpression elsewhere, also for a statement too long or too deep.
SelectStatement ParseSelect(std::string_view text);

/// Reads the text of a where clause, without the word itself. Raises SyntaxErrorInExpression.
Expression ParseCriterion(std::string_view text);

/// Reads the validation rule of a table: a condition with between, in, arithmetic and functions besides.
/// Raises SyntaxErrorInExpression.
Expression ParseTableRule(std::string_view text);
/// Reads the validation rule of a column. A comparison without a left side (">0", "like 'A*'") is one of the
/// column, and a value alone without a column ("'A' or 'B'") is what the column must be equal to. Raises
/// SyntaxErrorInExpression.
Expression ParseColumnRule(std::string_view text, const std::string& column);
/// Reads an expression that gives a value, such as a default, also with '=' before it. Raises
/// SyntaxErrorInExpression.
Expression ParseValue(std::string_view text);

}  // namespace jet::sql
