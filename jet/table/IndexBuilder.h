#pragma once

#include <cstddef>

#include "jet/table/Table.h"

namespace jet {

/// Fills the empty tree of real index `number` of `table` with entries for the rows that are there, and puts
/// their counts into the definition. Inside a change unit. Raises DuplicateKey, NullInPrimaryKey,
/// NullInRequiredColumn, FeatureNotSupported for rows that the index cannot have, RecordTooLarge.
void BuildIndex(Table& table, std::size_t number);

}  // namespace jet
