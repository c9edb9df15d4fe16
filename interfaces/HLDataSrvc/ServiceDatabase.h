#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "HLDataSrvc/Export.h"
#include "HLIData/IDataService.h"

namespace HLDataSrvc {

// What the database of a data service offers besides the operations of IDataService. Both functions take a
// service that CreateDataService has made, with its database open, and raise HLIData::Error otherwise:
// TypeMismatch for a service of another class, ObjectNotSet if no database is open.

/// Runs `work`, and commits everything that the service's operations have written in it as one transaction:
/// it reaches the disk whole, with one sync, or not at all. Returns what `work` returns. When `work` returns
/// false or raises, everything is rolled back, also what operations had stored before an error of theirs.
///
/// Raises what `work` raises, and the engine's error if the commit fails or the database was closed in
/// `work`; nothing is stored then. After a rollback the service's records are those of changes that were
/// undone: release the service and create another. May be nested.
HLDATASRVC_API bool RunInTransaction(HLIData::IDataService& service, const std::function<bool()>& work);

/// How many UTF-16 units a text column of the database takes; empty for a column of another type, and for one
/// that the database does not have under this very name.
HLDATASRVC_API std::optional<std::size_t> TextColumnLength(HLIData::IDataService& service,
                                                           const std::string& table,
                                                           const std::string& column);

}  // namespace HLDataSrvc
