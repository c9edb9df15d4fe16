#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "jet/table/Store.h"

namespace jet {

/// Select statements of the stored queries of a database, by the id of the query in the catalog. A query is
/// kept in pieces (MSysQueries). Queries whose pieces the engine does not understand, such as those that
/// change rows, are left out. Raises DamagedFile.
std::map<std::uint32_t, std::string> StoredQueryTexts(Store& store);

}  // namespace jet
