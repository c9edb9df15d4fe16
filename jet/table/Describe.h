#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "jet/TableSpec.h"
#include "jet/table/Store.h"

namespace jet {

/// A table's columns and indexes as the schema calls return them. Each index appears under the name it has
/// for people; those made for relationships are marked foreign.
TableInfo DescribeTable(const Table& table);

/// The relationships of a database, as MSysRelationships lists them, in the order of their names. Raises
/// DamagedFile.
std::vector<RelationInfo> DescribeRelations(Store& store);

/// All objects of the catalog, in the order of their names. Raises DamagedFile.
std::vector<ObjectInfo> DescribeObjects(Store& store);

/// What the database has under a name that is none of its tables, as " '...' is a stored query."; empty:
/// nothing.
std::string DescribeNoTable(Store& store, std::string_view name);

}  // namespace jet
