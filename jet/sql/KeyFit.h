#pragma once

#include <cstddef>

#include "jet/Value.h"
#include "jet/format/TableDefinition.h"

namespace jet::sql {

/// Whether rows with a value can be looked up in an index.
enum class KeyFit {
  Found,    ///< they can
  NoRow,    ///< no value of the column equals it, so that there are none
  Unknown,  ///< several keys may stand for it, or none is known: only reading all rows can decide
};

/// Index keys of text hold its first characters only; a text column has no more.
inline constexpr std::size_t kMostKeyBytes = 255;

/// Gives the value as the column of an index holds it. `wanted` is of the column's kind.
KeyFit FitKey(const Value& wanted, const format::ColumnDefinition& column, Value& key);

/// Whether an index of the column has its rows in the order in which values compare. Not so for text: a
/// column may have another sort order than the one in which values compare.
bool HasKeyOrder(ColumnType type);

}  // namespace jet::sql
