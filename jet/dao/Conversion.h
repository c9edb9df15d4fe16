#pragma once

#include <optional>
#include <string>

#include "jet/Value.h"
#include "jet/format/TableDefinition.h"

namespace jet {

/// The value as a column holds it: text that says a number, a date or a GUID fits columns of these types, and
/// these fit text columns; "True", "Yes", "False" and "No" are yes/no values, and so is every number; numbers
/// fit columns of other number types, halves rounded to even where decimals are lost. Null becomes False in a
/// yes/no column and stays Null in any other.
///
/// Raises CannotConvert for a value that does not fit the column's type or range, TextTooLong for a text
/// longer than the column. `table` is for messages.
Value ConvertForColumn(const Value& value, const format::ColumnDefinition& column, const std::string& table);

/// The value of a default's expression: a constant or a calculation, as of Date(). Raises the error of
/// parsing or evaluating it when it cannot be evaluated.
Value EvaluateDefault(const std::string& expression);

/// The value of a default's expression, if it is a constant: a number, a text in quotes, true, false, yes, no
/// or null, also with '=' before it.
std::optional<Value> ConstantDefault(const std::string& expression);

}  // namespace jet
