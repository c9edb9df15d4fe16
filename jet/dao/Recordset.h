#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Value.h"

namespace jet {

class RecordsetCore;

/// One column of a recordset's current row, or of the row being added or edited.
///
/// Borrowed from its recordset, and as long-lived as it.
class Field {
 public:
  Field(RecordsetCore& recordset, std::size_t ordinal) : m_recordset(recordset), m_ordinal(ordinal) {}

  const std::string& Name() const;
  ColumnType Type() const;

  /// Value in the row being added or edited if there is one, else in the current row. Raises NoCurrentRecord,
  /// RowDeleted, ObjectClosed.
  jet::Value Value() const;
  /// The same without building a Value: the text of a text or memo column; none for Null. Valid until the
  /// next call of the recordset. Raises CannotConvert for a column of another type.
  std::optional<std::string_view> Text() const;

  /// Assigns in the row being added or edited, converting to the column's type. Raises NoEditInProgress,
  /// CannotConvert, TextTooLong, CannotUpdate.
  void Value(const jet::Value& value);

 private:
  RecordsetCore& m_recordset;
  std::size_t m_ordinal;
};

/// The rows of a select statement, one of them current.
///
/// Opens on its first row. A dynaset holds the rows that it found when it opened and reads their values when
/// asked; a snapshot holds values. Handed out by Database and valid until closed, or until the database is;
/// afterwards every member but `Close` raises ObjectClosed. Adding and editing work on a copy of the row
/// until `Update`; moving drops it.
class Recordset {
 public:
  explicit Recordset(RecordsetCore& core) : m_core(&core) {}
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  /// After the last row, or no rows at all. (`EOF` is a macro of the C library.)
  bool Eof() const;
  /// Raises NoCurrentRecord at the end.
  void MoveNext();
  /// To the first row; with no rows it stays at the end.
  void MoveFirst();
  /// To the first row, from the start, for which `criterion` (the text of a where clause) holds. When there
  /// is none `NoMatch` is true and there is no current row until MoveFirst or a search that succeeds. Raises
  /// SyntaxErrorInExpression, UnknownColumnInStatement, TypeMismatch, BadPattern.
  void FindFirst(const std::string& criterion);
  bool NoMatch() const;

  /// Starts a new row from the columns' default values, as far as these are constants. After `Update` the
  /// current row is the one from before, and the new one stands at the end. Raises CannotUpdate.
  void AddNew();
  /// Starts a copy of the current row. Raises CannotUpdate, NoCurrentRecord, RowDeleted.
  void Edit();
  /// Writes the row being added or edited, whole or not at all. Raises NoEditInProgress, DuplicateKey,
  /// NullInRequiredColumn, NullInPrimaryKey, ZeroLengthText, NoReferredRow, RowIsReferred, RecordTooLarge,
  /// RowDeleted, FeatureNotSupported for a default that is an expression and would be needed, and the errors
  /// of the file; the row being edited is kept, so that it can be mended and updated again.
  void Update();
  /// Drops the row being added or edited; when there is none it does nothing.
  void CancelUpdate();
  /// Removes the current row at once; until the next move there is no current row. Raises NoCurrentRecord,
  /// RowDeleted, RowIsReferred, CannotUpdate.
  void Delete();
  /// Twice is harmless.
  void Close();

  /// A column by its name, in any case, with or without the table's name before it. Raises UnknownField.
  Field& Fields(std::string_view name);
  Field& Fields(std::size_t ordinal);
  std::size_t FieldCount() const;
  bool Updatable() const;
  /// The table that the rows are of; of a join the first table.
  const std::string& TableName() const;
  /// How the rows are found, in a few words for people: "player info: index PrimaryKey = 17", "scan of draft
  /// info".
  const std::string& Plan() const;

 private:
  RecordsetCore* m_core;  // which lives as long
};

}  // namespace jet
