#pragma once

#include "jet/sql/Evaluator.h"
#include "jet/sql/Plan.h"

namespace jet::sql {

/// Keys between which rows stand in an index: from `lower` to below `upper`; empty ones are no bound.
struct KeyBounds {
  KeyBytes lower;
  KeyBytes upper;
};

/// What came of looking for the bounds.
enum class BoundsFit {
  Found,
  NoRow,    ///< no row can have what the columns must be equal to
  Unknown,  ///< what they must be equal to has no key, or more than one
};

/// The bounds of an access to an index of `table`. Columns in it are read through `evaluator`.
BoundsFit FindBounds(const Table& table, const IndexAccess& access, Evaluator& evaluator, KeyBounds& bounds);

/// Whether a comparison with what `operand` gives, a literal, can bound an index at that column of its key.
bool HasBound(const BoundExpression& operand, const format::ColumnDefinition& column, bool ascending);

}  // namespace jet::sql
