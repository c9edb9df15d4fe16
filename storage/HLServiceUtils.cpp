#include "storage/HLServiceUtils.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "jet/Error.h"
#include "jet/dao/Database.h"
#include "platform/ThreadNumber.h"

namespace HLDataSrvc::HLServiceUtils {
namespace {

constexpr char kFileNamePrefix[] = "Halcyra - ";
constexpr char kFileExtension[] = ".mdb";
constexpr char kFolderSeparator[] = "\\";
constexpr char kParentFolder[] = "\\..";
constexpr char kDatabasesFolder[] = "Databases";

/// The engines of all threads, by the thread's number: a thread reuses the engine of an ended one that had
/// its number.
///
/// Not in thread storage: destructors there run while the system holds its lock on loading, and keep the
/// library loaded until the thread ends. Static lifetime, so that unloading the library destroys nothing.
struct Engines {
  std::mutex mutex;
  std::map<std::uint64_t, jet::DBEngine> byThread;  // guarded by mutex; each engine is its thread's alone
};

Engines& AllEngines() {
  static Engines& engines = *new Engines;
  return engines;
}

bool IsHeldByAnother(const jet::Error& error) {
  return error.Number() == jet::ErrorNumber::FileHeldExclusively ||
         error.Number() == jet::ErrorNumber::FileInUse;
}

// Opens the file in place of the one that `database` holds, which stays open if that fails.
void OpenInPlaceOf(std::shared_ptr<jet::Database>& database, const std::string& path) {
  try {
    database = OpenExclusively(path);
    return;
  } catch (const jet::Error& error) {
    const bool isOurs = database && database->Name() == path && database->HoldsFile(path);
    if (!IsHeldByAnother(error) || !isOurs) throw;
  }
  database = Engine().ReopenDatabase(*database, GetConnectString());
}

/// Runs `work` and returns its result. When it raises, returns false, with the error's description in
/// `errorMessage` and the error itself in `raised`, unless that is null.
template <typename Work>
bool HandOutFailure(std::string& errorMessage, std::exception_ptr* raised, Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::exception& error) {
    if (raised != nullptr) *raised = std::current_exception();
    errorMessage = error.what();
    return false;
  }
}

}  // namespace

std::shared_ptr<jet::Database> OpenExclusively(const std::string& path) {
  return Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false, GetConnectString());
}

std::string GetDatabaseFileName(HLIData::DBType kind, const std::string& firstPart,
                                const std::string& secondPart) {
  std::string name = kFileNamePrefix;
  switch (kind) {
    case HLIData::DBType::Live:
      name += "Live";
      break;
    case HLIData::DBType::Test:
      name += "Test";
      break;
    case HLIData::DBType::Blank:
      name += "Blank";
      break;
    case HLIData::DBType::Backup:
      name += "Backup - ";
      name += firstPart.empty() || secondPart.empty() ? "*" : firstPart + " - " + secondPart;
      break;
    case HLIData::DBType::Setup:
      name += "Setup";
      break;
  }
  return name + kFileExtension;
}

std::string GetDatabaseFolder(const Host& host) {
  const std::string applicationFolder = host.ApplicationFolder();
  const std::string probe = kFolderSeparator + GetDatabaseFileName(HLIData::DBType::Live, "", "");
  const auto holdsLiveFile = [&](const std::string& folder) {
    return !host.FindFile(folder + probe).empty();
  };

  if (!IsDevelopmentLayout()) return holdsLiveFile(applicationFolder) ? applicationFolder : std::string();
  const std::string twoAbove =
      applicationFolder + kParentFolder + kParentFolder + kFolderSeparator + kDatabasesFolder;
  if (holdsLiveFile(twoAbove)) return twoAbove;
  const std::string oneAbove = applicationFolder + kParentFolder + kFolderSeparator + kDatabasesFolder;
  return holdsLiveFile(oneAbove) ? oneAbove : std::string();
}

std::string GetDatabasePath(const Host& host, HLIData::DBType kind, const std::string& firstPart,
                            const std::string& secondPart) {
  return GetDatabaseFolder(host) + kFolderSeparator + GetDatabaseFileName(kind, firstPart, secondPart);
}

bool IsDevelopmentLayout() {
#ifdef HALCYRA_DEVELOPMENT_LAYOUT
  return true;
#else
  return false;
#endif
}

std::string GetConnectString() {
  return std::string("MS Access;pwd=") + kDatabasePassword;
}

bool OpenDatabaseFile(const Host& host, const std::string& path, std::shared_ptr<jet::Database>& database,
                      std::string& errorMessage, std::exception_ptr* raised) {
  return HandOutFailure(errorMessage, raised, [&] {
    if (host.FindFile(path).empty()) {
      errorMessage = "Database file: " + path + " is missing.";
      return false;
    }
    OpenInPlaceOf(database, path);
    return true;
  });
}

bool OpenDatabaseByKind(const Host& host, HLIData::DBType kind, std::shared_ptr<jet::Database>& database,
                        std::string& errorMessage, std::exception_ptr* raised) {
  return HandOutFailure(errorMessage, raised, [&] {
    return OpenDatabaseFile(host, GetDatabasePath(host, kind, "", ""), database, errorMessage, raised);
  });
}

jet::DBEngine& Engine() {
  Engines& engines = AllEngines();
  const std::lock_guard lock(engines.mutex);
  return engines.byThread.try_emplace(ThreadNumber()).first->second;
}

void ReplaceEngine(jet::EngineOptions options) {
  Engine() = jet::DBEngine(std::move(options));
}

}  // namespace HLDataSrvc::HLServiceUtils
