#pragma once

#include <vector>

#include "jet/file/PageStore.h"
#include "jet/format/TableDefinition.h"

namespace jet {

/// The definitions of MSysObjects, MSysACEs, MSysQueries and MSysRelationships, which stand on the pages 2 to
/// 5 of every database; without usage maps and index pages.
std::vector<format::TableDefinition> LayOutSystemTables();

}  // namespace jet
