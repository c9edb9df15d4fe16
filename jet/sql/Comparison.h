#pragma once

#include <compare>

#include "jet/Value.h"

namespace jet::sql {

/// What values can be compared with each other: those of one kind.
enum class ValueKind { Null, Number, Text, Date, Guid, Binary };

ValueKind KindOf(ColumnType type);
ValueKind KindOf(const Value& value);
/// "a number", "text", for messages.
const char* NameOf(ValueKind kind);

/// The order of two values of one kind: text by the sort order of the database, numbers by what they are
/// worth. Null comes before everything. Values of different kinds, which only a damaged file has in one
/// column, come in the order of the kinds.
std::strong_ordering CompareValues(const Value& a, const Value& b);

}  // namespace jet::sql
