#pragma once

#include "jet/Check.h"

namespace jet {

class Store;

/// Checks a whole open file: the map of free pages, table definitions, usage maps against the pages that they
/// list, rows and their values, long values, indexes against rows both ways, the catalog, relationships.
/// Reads every page.
///
/// Damage that stops the reading of one structure is a finding, and the check continues with the next. Pages
/// in use that nothing refers to are no finding: other writers leave some behind. Raises ReadFailed when the
/// system cannot read.
CheckReport CheckDatabase(Store& store);

}  // namespace jet
