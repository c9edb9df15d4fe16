#pragma once

#include "jet/Value.h"
#include "jet/sql/Ast.h"

/// What the operators and functions of rules and defaults give.
namespace jet::sql {

/// The result of an operator. Null if an operand is Null; Join takes Null for an empty text unless both are
/// Null. Whole numbers and amounts of money add exactly while they fit, other numbers calculate as doubles.
/// Raises CannotConvert for a division by zero and for a result that is no number.
Value Calculate(Operator arithmetic, const Value& left, const Value& right);

/// The moment in local time, to the second.
DateTime LocalNow();

}  // namespace jet::sql
