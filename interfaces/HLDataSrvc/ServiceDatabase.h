#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "HLDataSrvc/Export.h"
#include "HLIData/IDataService.h"
#include "HLIData/IPlayerInfo.h"

namespace HLDataSrvc {

// What the database of a data service offers besides the operations of IDataService. All functions but
// OpeningError take a service that CreateDataService has made, with its database open, and raise
// HLIData::Error otherwise: TypeMismatch for a service of another class, ObjectNotSet if no database is open.
// Errors of the engine are raised as they are.

/// Runs `work`, and commits everything that the service's operations have written in it as one transaction:
/// it reaches the disk whole, with one sync, or not at all. Returns what `work` returns. When `work` returns
/// false or raises, everything is rolled back, also what operations had stored before an error of theirs.
///
/// Raises what `work` raises, and the engine's error if the commit fails or the database was closed in
/// `work`; nothing is stored then. OpenDatabase and Initialize fail in `work`. After a rollback the service's
/// records still show the undone changes: use RenewService. May be nested.
HLDATASRVC_API bool RunInTransaction(HLIData::IDataService& service, const std::function<bool()>& work);

/// The error because of which the last Initialize or OpenDatabase failed, whose description is their message;
/// empty if it succeeded, or if there is no such file. The database may be closed.
HLDATASRVC_API std::exception_ptr OpeningError(HLIData::IDataService& service);

/// Raises the engine's PermissionDenied, with the reason, if the database can be read and not changed, as on
/// a full disk when a log is left beside it.
HLDATASRVC_API void CheckCanChange(HLIData::IDataService& service);

/// A new service, which has loaded nothing but the settings, on the open database of another. The other one
/// is left as after CloseDatabase; the file stays open and locked. Raises ObjectNotSet, and closes the file,
/// if the settings cannot be loaded.
HLDATASRVC_API std::shared_ptr<HLIData::IDataService> RenewService(HLIData::IDataService& service);

/// How many UTF-16 units a text column of the database takes; empty for a column of another type, and for one
/// that the database does not have. The column name is case-sensitive.
HLDATASRVC_API std::optional<std::size_t> TextColumnLength(HLIData::IDataService& service,
                                                           const std::string& table,
                                                           const std::string& column);

/// The player with an identifier, from the service's cache or the database; empty if there is none. Raises
/// HLIData::Error (UnknownKey), naming the player, for one whose position or team does not exist.
HLDATASRVC_API std::shared_ptr<HLIData::IPlayerInfo> FindPlayer(HLIData::IDataService& service,
                                                                std::int32_t id);

// The rows themselves, for looking at and mending what the operations refuse. The service's records do not
// follow: discard or release them.

/// A row of a select statement: a text for each column, empty for Null.
using TextRow = std::vector<std::optional<std::string>>;

/// The rows of a select statement.
HLDATASRVC_API std::vector<TextRow> SelectRows(HLIData::IDataService& service, const std::string& statement);

/// Assigns columns, by name, in every row of a select statement of one table, as one transaction; a value
/// that is empty is Null. Returns how many rows there are.
HLDATASRVC_API std::size_t EditRows(
    HLIData::IDataService& service, const std::string& statement,
    const std::vector<std::pair<std::string, std::optional<std::string>>>& values);

/// Deletes every row of a select statement of one table, as one transaction. Returns how many there were.
HLDATASRVC_API std::size_t DeleteRows(HLIData::IDataService& service, const std::string& statement);

}  // namespace HLDataSrvc
