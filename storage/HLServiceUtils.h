#pragma once

#include <exception>
#include <memory>
#include <string>

#include "HLDataSrvc/Host.h"
#include "HLIData/Types.h"
#include "jet/dao/DBEngine.h"

/// From a kind of database to its folder, its file and an open handle.
///
/// Folders and names are joined with `\` and stay as they are, parent references included: so they appear in
/// messages.
namespace HLDataSrvc::HLServiceUtils {

/// The password of every league file.
inline constexpr char kDatabasePassword[] = "talwep83rn";

/// The file name of a kind. The two parts count for a backup only: they name one particular backup, and with
/// either of them empty the name is a pattern for all backups. A kind without a name gives "Halcyra - .mdb".
std::string GetDatabaseFileName(HLIData::DBType kind, const std::string& firstPart,
                                const std::string& secondPart);

/// The folder that holds the live file, empty when none does: whatever kind is wanted, it is the live file
/// that is looked for. It is the application folder or, in the development layout, a folder "Databases" one
/// or two steps above.
std::string GetDatabaseFolder(const Host& host);

/// The folder, a `\` and the file name. With no folder found it begins with the `\`.
std::string GetDatabasePath(const Host& host, HLIData::DBType kind, const std::string& firstPart,
                            const std::string& secondPart);

/// Whether the component runs inside its source tree: a switch of the build, off in delivered ones.
bool IsDevelopmentLayout();

/// The connect string with the database password.
std::string GetConnectString();

/// Opens a league file exclusively, for reading and writing. Raises what DBEngine::OpenDatabase raises.
std::shared_ptr<jet::Database> OpenExclusively(const std::string& path);

/// The same. On failure it returns false with the reason in
/// `errorMessage`, and leaves `database` as it was, also if that holds the very file; it raises nothing.
/// `raised`, if given, receives the error that made it fail; a missing file is none.
bool OpenDatabaseFile(const Host& host, const std::string& path, std::shared_ptr<jet::Database>& database,
                      std::string& errorMessage, std::exception_ptr* raised = nullptr);

/// The same for the file of a kind.
bool OpenDatabaseByKind(const Host& host, HLIData::DBType kind, std::shared_ptr<jet::Database>& database,
                        std::string& errorMessage, std::exception_ptr* raised = nullptr);

/// The database engine of this thread, created on first use. It outlives the thread: the next thread with the
/// same number reuses it.
jet::DBEngine& Engine();

/// Replaces this thread's engine by one with other options. Databases that are open stay open.
void ReplaceEngine(jet::EngineOptions options);

}  // namespace HLDataSrvc::HLServiceUtils
