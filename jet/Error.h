#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace jet {

/// Numbers of the errors that the engine raises. Closed: every `jet::Error` carries one of these.
enum class ErrorNumber : int {
  BadPattern = 93,          ///< a like pattern with a bracket that is never closed
  NoCurrentRecord = 3021,   ///< no row under the cursor
  DuplicateKey = 3022,      ///< a second row with the same key in a unique index
  NoEditInProgress = 3020,  ///< Update, or assigning a field, without AddNew or Edit
  FileTooLarge = 3026,      ///< the file would pass 2 GiB
  CannotUpdate = 3027,      ///< the recordset or the database is open for reading only
  FileNotFound = 3024,
  PasswordRejected = 3031,  ///< wrong or missing password
  NoTransaction = 3034,     ///< CommitTrans or Rollback without BeginTrans
  PathNotFound = 3044,      ///< the folder does not exist
  FileInUse = 3045,         ///< the file is open elsewhere and not shared
  RecordTooLarge = 3047,    ///< a row, or an index key, too long for a page
  LogDoesNotBelong = 3428,  ///< the log beside a database holds changes of another state of it
  DamagedFile = 3049,       ///< a structure of the file contradicts the format
  PermissionDenied = 3051,  ///< the system does not let us read or write the file
  InvalidFileName = 3055,   ///< a name that no file can have
  NullInPrimaryKey = 3058,
  UnknownColumnInStatement = 3061,
  SyntaxErrorInExpression = 3075,
  UnknownTable = 3078,
  NotASelect = 3129,
  SyntaxErrorInFrom = 3131,
  TextTooLong = 3163,
  RowDeleted = 3167,  ///< the row was deleted after the recordset was opened
  DiskFull = 3183,
  RowIsReferred = 3200,  ///< other rows refer to the row that should go
  NoReferredRow = 3201,  ///< the row that should be referred to does not exist
  UnknownField = 3265,   ///< the recordset has no column of that name
  NullInRequiredColumn = 3314,
  ZeroLengthText = 3315,
  RuleViolated = 3317,         ///< a row that a validation rule of its table or columns does not allow
  NotADatabase = 3343,         ///< not a Jet database, or a version this engine does not know
  FileHeldExclusively = 3356,  ///< the file is open exclusively elsewhere
  ObjectClosed = 3420,         ///< the database or the recordset was closed
  CannotConvert = 3421,        ///< a value that does not fit the column's type or range
  TypeMismatch = 3464,         ///< operands of different kinds compared
  ObjectExists = 3010,         ///< a table, index or relationship of that name is there already
  InvalidDefinition = 3259,    ///< a table, column, index or relationship that cannot be made as asked
  FeatureNotSupported = 3001,  ///< something the engine cannot keep consistent and therefore refuses
  ReadFailed = 3043,           ///< the system failed to read or write for another reason
};

/// An error of the engine: a number, and one clear sentence that names the file, table, column or value at
/// fault.
///
/// `what()` is the sentence alone; that is what users are shown. What the layers on the way up know besides
/// is kept apart in `Context()`, innermost first.
class Error : public std::runtime_error {
 public:
  Error(ErrorNumber number, const std::string& description)
      : std::runtime_error(description), m_number(number) {}

  ErrorNumber Number() const noexcept { return m_number; }
  const std::vector<std::string>& Context() const noexcept { return m_context; }
  void AddContext(std::string text) { m_context.push_back(std::move(text)); }

  /// True if the change that failed may be stored nevertheless; the sentence says so.
  bool IsUncertain() const noexcept { return m_isUncertain; }
  void MarkUncertain() { m_isUncertain = true; }

 private:
  ErrorNumber m_number;
  std::vector<std::string> m_context;
  bool m_isUncertain = false;
};

}  // namespace jet
