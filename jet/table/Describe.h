#pragma once

#include <vector>

#include "jet/Schema.h"
#include "jet/table/Store.h"

namespace jet {

/// A table's columns and indexes as the schema calls tell them. Each index appears under the name it has for
/// people; those made for relationships are marked foreign.
TableInfo DescribeTable(const Table& table);

/// The relationships of a database, as MSysRelationships lists them, in the order of their names. Raises
/// DamagedFile.
std::vector<RelationInfo> DescribeRelations(Store& store);

}  // namespace jet
