#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "jet/Durability.h"
#include "jet/dao/Database.h"

namespace jet {

class File;
class FileSystem;

/// Told of every call of the access objects before it is carried out; may raise an error in its place.
/// For counting statements, tracing, and failing on purpose in tests.
class CallObserver {
 public:
  virtual ~CallObserver() = default;
  /// `call` is the member's name as in "Database.OpenRecordset", "Recordset.MoveNext", "Field.Value"
  /// (reading), "Field.Value=" (assigning); `detail` the statement, file or column name where there is one.
  virtual void OnCall(const char* call, const std::string& detail) = 0;
};

/// Settings of an engine, all with working defaults.
struct EngineOptions {
  std::size_t cacheBytes = std::size_t{64} << 20;  ///< most bytes of unchanged pages kept per open database
  std::shared_ptr<FileSystem> files;               ///< none: the file system of the machine
  std::shared_ptr<CallObserver> observer;          ///< null: no observer
  Durability durability = Durability::Full;        ///< what changes survive
};

/// The file beside a database in which changes wait until the database is closed. One that is there while
/// no process has the database open was left by a crash; opening the database replays it.
std::string LogNameFor(const std::string& databaseName);

/// Properties of a database made from nothing.
struct CreateOptions {
  std::string password;  ///< up to 20 UTF-16 units; empty: none
  bool encode = false;   ///< code the pages (RC4) with a key of the file's own
  /// What changes survive as long as it is open; none: what the engine says.
  std::optional<Durability> durability{};
  std::string like{};  ///< the file whose owner and permissions it gets; empty: what the system gives
};

/// The engine: opens and creates database files. Cheap; keep one per thread. Databases outlive it safely.
class DBEngine {
 public:
  explicit DBEngine(EngineOptions options = {});

  /// Opens a database file. `exclusive`: while it is open, no other process and no other connection can open
  /// it. `connect` is a list of items separated by `;`; `pwd=` (any case) carries the password. A file
  /// without a password opens with any. Raises FileNotFound, InvalidFileName, PathNotFound, NotADatabase,
  /// PasswordRejected, FileInUse, FileHeldExclusively, PermissionDenied, DamagedFile, LogDoesNotBelong.
  ///
  /// If a log was left beside the file and cannot be brought into it (a full disk, a folder that cannot be
  /// written), the database is read through the log, and changes raise PermissionDenied with the reason. If
  /// the log is damaged in the middle, DamagedFile says how many changes are lost; the log has another name
  /// then, and the next opening succeeds.
  ///
  /// A shared open that is not read-only holds the file as an exclusive one does, but only against other
  /// writers.
  std::shared_ptr<Database> OpenDatabase(const std::string& name, bool exclusive = false,
                                         bool readOnly = false, const std::string& connect = {});

  /// Opens the file of an open database again, with nothing cached. The lock is kept. The given database is
  /// closed, and its open transactions are rolled back; if opening fails, it stays open.
  /// Raises ObjectClosed, PasswordRejected, DamagedFile, NotADatabase.
  std::shared_ptr<Database> ReopenDatabase(Database& database, const std::string& connect = {});

  /// Makes a new database file with empty system tables and opens it exclusively. Raises ObjectExists when
  /// the file is there; when it fails, no file is left behind.
  std::shared_ptr<Database> CreateDatabase(const std::string& name, const CreateOptions& options = {});

  /// Writes a copy of the database as it is now, page for page, into a new file, which gets the owner and the
  /// permissions of the file `like`. Returns the new file, with its lock. Raises ObjectExists when there is
  /// one of that name; when it fails, no file is left behind.
  std::shared_ptr<File> CopyDatabase(Database& source, const std::string& name, const std::string& like);

  /// Writes a new database with the content of another: tables, rows in their order, indexes, relationships
  /// and properties, the password, and pages coded if they are. It has no free pages, its indexes are packed.
  /// Its owner and permissions are those of the other. Returns it open, for its changes to be checked. Raises
  /// what CopyDatabase does, FeatureNotSupported for what a new file would lose (a stored query, say), and
  /// what reading and adding rows raise.
  std::shared_ptr<Database> CompactDatabase(Database& source, const std::string& name);

  /// Closes a database, and returns its file with the lock. Raises what closing raises.
  std::shared_ptr<File> Release(Database& database);
  /// Opens the file of a name as it is, to hold its lock. Raises what OpenDatabase raises of files.
  std::shared_ptr<File> Hold(const std::string& name);

  /// A name beside `target` for a file that goes there once it is whole. Left-overs of crashes are removed.
  std::string TemporaryName(const std::string& target) const;
  /// Puts the database file `from` in the place of an open database, which is closed: whatever happens, the
  /// name stands for the one or the other, whole. Where the system supports it the file stays locked
  /// throughout. `made` is the lock of `from`. Raises ObjectClosed, PermissionDenied, and what closing
  /// raises; an uncertain error if it was done, but may not survive a power cut.
  void ReplaceDatabase(Database& database, const std::string& from, std::shared_ptr<File> made);
  /// The same for the file `to`, whatever is in it, which `held` is. Its log goes first, unread.
  void ReplaceDatabase(const std::string& to, std::shared_ptr<File> held, const std::string& from,
                       std::shared_ptr<File> made);
  /// Gives the database file `from` a name that nothing has. The log of a database of that name that is gone
  /// goes first, unread. Raises ObjectExists, and FileInUse when that log is open.
  void PlaceDatabase(const std::string& to, const std::string& from, std::shared_ptr<File> made);

  /// Whether there is a file of that name, be it a database or not.
  bool HasFile(const std::string& name) const;
  /// Gives a database file whose lock is `held`, and the log it may have, another name, unread: both or
  /// neither. Raises ObjectExists when there is a file `to`.
  void RenameDatabase(const std::string& from, std::shared_ptr<File> held, const std::string& to);
  /// Removes a closed database file, and the log it may have, unread; one that is not there is no error.
  /// Raises FileInUse, FileHeldExclusively.
  void RemoveDatabase(const std::string& name);

 private:
  std::shared_ptr<Database> CreateWithKey(const std::string& name, const CreateOptions& options,
                                          std::uint32_t databaseKey);
  void RemoveFailed(const std::string& name) noexcept;
  void Observe(const char* call, const std::string& name) const;

  EngineOptions m_options;
};

}  // namespace jet
