#pragma once

#include "jet/dao/Database.h"

namespace jet::test {

/// Makes tables with columns of every type, indexes of every kind (unique, composite, descending, leaving out
/// Nulls), relationships (of one column and of two, with cascades and without) in a new database.
void MakeAllTypesTables(Database& database);

}  // namespace jet::test
