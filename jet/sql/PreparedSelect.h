#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "jet/sql/Executor.h"
#include "jet/sql/Plan.h"
#include "jet/sql/Query.h"
#include "jet/sql/StatementShape.h"
#include "jet/table/Store.h"

namespace jet::sql {

/// A select statement that is parsed, bound to the tables of a store, and planned; to be run as often as
/// wanted, also with other whole numbers.
///
/// It reads tables as they are when it runs, but is of no use any more once the schema has changed.
class PreparedSelect {
 public:
  /// `shape` is that of the statement. Raises what ParseSelect and BindSelect raise.
  PreparedSelect(std::string_view statement, const StatementShape& shape, Store& store);
  PreparedSelect(const PreparedSelect&) = delete;
  PreparedSelect& operator=(const PreparedSelect&) = delete;

  /// Whether it serves all statements of its shape.
  bool ServesShape() const { return m_servesShape; }
  /// Puts the numbers of another statement of its shape in place of these. False when they are more or
  /// fewer.
  bool Put(const StatementNumbers& numbers);

  const Query& Bound() const { return m_query; }
  const std::vector<OutputColumn>& Columns() const { return m_query.columns; }
  /// Runs it. Not while it is being run.
  Executor& Run() { return m_executor; }
  /// How a statement of its shape with these numbers is run, in a few words.
  std::string Explain(const StatementNumbers& numbers) const;

 private:
  /// A literal that is one of the statement's numbers.
  struct Slot {
    BoundExpression* literal = nullptr;
    bool negative = false;
  };

  void FindSlots(BoundExpression& expression, const StatementShape& shape);
  bool KeepsPlan() const;

  Query m_query;
  std::vector<Slot> m_slots;  // by number
  Plan m_plan;
  Executor m_executor;
  bool m_hasMarks;  // the plan's text has marks in the place of numbers
  bool m_servesShape;
};

}  // namespace jet::sql
