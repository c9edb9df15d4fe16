#pragma once

#include <string>

#include "jet/TableSpec.h"
#include "jet/Value.h"

namespace jet {

/// The properties (LvProp) of a new table: what its columns require, allow and default to. Empty when no
/// column has any.
Bytes MakeTableProperties(const TableSpec& table);

}  // namespace jet
