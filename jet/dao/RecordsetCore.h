#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/dao/DatabaseCore.h"
#include "jet/dao/Recordset.h"
#include "jet/dao/RecordsetRows.h"
#include "jet/dao/RowEdit.h"

namespace jet {

/// A field as a recordset knows it.
struct FieldInfo {
  std::string name;
  std::string label;  ///< the table that it comes from, as the statement calls it
  ColumnType type = ColumnType::Long;
};

/// The state of a recordset: its rows, which of them is current, and the row being added or edited.
class RecordsetCore {
 public:
  /// Runs a statement. Raises as Database::OpenRecordset does.
  static std::unique_ptr<RecordsetCore> Open(std::shared_ptr<DatabaseCore> database, const std::string& sql);
  ~RecordsetCore();
  RecordsetCore(const RecordsetCore&) = delete;
  RecordsetCore& operator=(const RecordsetCore&) = delete;

  DatabaseCore& Database() const { return *m_database; }
  /// Raises ObjectClosed.
  void CheckOpen() const;

  bool IsAtEnd() const { return m_state == State::AtEnd; }
  bool NoMatch() const { return m_noMatch; }
  bool IsUpdatable() const;
  const std::string& PlanText() const { return m_plan; }

  void MoveFirst();
  void MoveNext();
  void FindFirst(const std::string& criterion);

  void AddNew();
  void Edit();
  void Update();
  void CancelUpdate() { m_edit.reset(); }
  void Delete();

  std::vector<Field>& Fields() { return m_fields; }
  const FieldInfo& InfoOf(std::size_t field) const { return m_infos[field]; }
  /// Raises UnknownField.
  std::size_t FindField(std::string_view name) const;
  Value ReadField(std::size_t field);
  const std::string* ReadFieldText(std::size_t field);
  void AssignField(std::size_t field, const Value& value);

  /// Lets go of pages in the cache.
  void ReleaseRow() { m_rows->Release(); }
  /// Whether the table that the rows are of is still there.
  bool HasItsTable(Store& store) const;
  /// Twice is harmless.
  void Close();

 private:
  enum class State {
    AtRow,
    AtEnd,
    NoRow,    ///< nothing was found
    Deleted,  ///< the row under the cursor was deleted through this recordset
  };

  RecordsetCore(std::shared_ptr<DatabaseCore> database, std::vector<FieldInfo> infos,
                std::unique_ptr<RecordsetRows> rows, DynasetRows* dynaset, std::string plan);

  void MoveTo(std::size_t row);
  void CheckCurrentRow() const;
  DynasetRows& UpdatableRows() const;

  std::shared_ptr<DatabaseCore> m_database;
  bool m_isOpen = true;
  std::vector<FieldInfo> m_infos;
  std::vector<Field> m_fields;
  std::unique_ptr<RecordsetRows> m_rows;
  DynasetRows* m_dynaset;   // m_rows, if they can be changed
  std::string m_tableName;  // of the dynaset
  std::string m_plan;
  State m_state = State::AtEnd;
  std::size_t m_row = 0;
  bool m_noMatch = false;
  std::optional<RowEdit> m_edit;
  std::string m_text;  // what ReadFieldText answered with, if it had to be made
};

}  // namespace jet
