#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "jet/sql/BoundExpression.h"

namespace jet::sql {

/// Gives the values of the row, or the row of each table, that an expression is evaluated for.
class RowSource {
 public:
  virtual ~RowSource() = default;
  virtual Value Read(ColumnPlace place) const = 0;
  /// A text or memo column without building a Value, in `buffer` or elsewhere until the next row; none for
  /// Null.
  virtual std::optional<std::string_view> ReadText(ColumnPlace place, std::string& buffer) const = 0;
};

/// Three-valued logic: what is compared with Null is neither true nor false.
enum class Truth { False, True, Unknown };

/// Evaluates conditions for the rows that a RowSource stands on, reading only the columns that decide. Reuses
/// its buffers from row to row. Raises what the reading of rows raises.
class Evaluator {
 public:
  /// `rows` must outlive it.
  explicit Evaluator(const RowSource& rows) : m_rows(&rows) {}

  Truth Test(const BoundExpression& condition);
  bool Holds(const BoundExpression& condition) { return Test(condition) == Truth::True; }
  /// What a column, literal, condition or calculation gives. Raises CannotConvert for arithmetic without a
  /// result, such as a division by zero.
  Value Evaluate(const BoundExpression& expression);

 private:
  Truth Compare(const BoundExpression& comparison);
  Truth Like(const BoundExpression& like);
  Value Calculate(const BoundExpression& expression);
  bool IsNull(const BoundExpression& operand);
  std::optional<std::string_view> TextOf(const BoundExpression& operand, std::string& buffer);

  const RowSource* m_rows;
  std::string m_left;
  std::string m_right;
};

}  // namespace jet::sql
