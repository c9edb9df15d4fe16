#pragma once

#include <string>

#include "jet/Value.h"
#include "jet/table/Store.h"

/// Expressions that a file holds: validation rules and default values.
namespace jet::sql {

/// Has the tables of the store evaluate their validation rules.
void UseExpressionRules(Store& store);

/// The value of an expression without columns, such as a default. Raises what parsing, binding and evaluating
/// raise when the engine cannot evaluate it.
Value EvaluateConstant(const std::string& expression);

}  // namespace jet::sql
