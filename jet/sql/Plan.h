#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "jet/sql/PrefixSieve.h"
#include "jet/sql/Query.h"
#include "jet/table/Index.h"

namespace jet::sql {

/// One end of a range of keys: the column is in this relation to a literal.
struct IndexRange {
  Comparison comparison = Comparison::Equal;  ///< as the index runs: turned round for a descending column
  const BoundExpression* operand = nullptr;
};

/// How rows of one table are found through an index.
struct IndexAccess {
  std::size_t index = 0;
  /// What the leading columns must be equal to: literals, or columns of tables that come earlier in the plan.
  std::vector<const BoundExpression*> equal;
  std::vector<IndexRange> ranges;  ///< of the column behind those
  bool isConstant = true;          ///< literals only
  bool inKeyOrder = false;         ///< rows are wanted in the order of the index, else in storage order
};

/// One table of a plan: for each row of the tables before it, its rows are found and tested.
struct Step {
  std::size_t source = 0;
  std::optional<IndexAccess> access;            ///< none: all rows are read
  std::vector<const BoundExpression*> filters;  ///< tested for each row; the index's own conditions as well
  std::optional<PrefixSieve> sieve;             ///< of one of the filters, when all rows are read
  const BoundExpression* sieved = nullptr;      ///< that filter
};

/// An aggregate that is read off one end of an index.
struct IndexEnd {
  std::size_t index = 0;
  bool last = false;
};

/// How a query is run. Points into the query, which must outlive it and stay where it is.
struct Plan {
  bool nothing = false;  ///< a condition can never hold: there are no rows
  std::vector<Step> steps;
  bool sorted = true;          ///< rows come in the order wanted; else they are sorted in the end
  std::vector<IndexEnd> ends;  ///< one for each column of the result, or none at all
  std::string text;            ///< in a few words, for people
};

/// Finds a way to run the query: equalities and ranges on leading columns of an index use it, and so does an
/// order that is the index's; tables are joined so that later ones are looked up by index where possible. An
/// index never changes which rows there are.
Plan MakePlan(const Query& query);

}  // namespace jet::sql
