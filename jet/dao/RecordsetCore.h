#pragma once

#include <algorithm>
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
#include "jet/sql/PreparedSelect.h"

namespace jet {

/// The state of a recordset: its rows, which of them is current, and the row being added or edited.
class RecordsetCore {
 public:
  /// Runs a statement. Raises as Database::OpenRecordset does.
  RecordsetCore(std::shared_ptr<DatabaseCore> database, const std::string& sql);
  ~RecordsetCore();
  RecordsetCore(const RecordsetCore&) = delete;
  RecordsetCore& operator=(const RecordsetCore&) = delete;

  DatabaseCore& Database() const { return *m_database; }
  /// Raises ObjectClosed.
  void CheckOpen() const;

  bool IsAtEnd() const { return m_state == State::AtEnd; }
  bool NoMatch() const { return m_noMatch; }
  bool IsUpdatable() const;
  const std::string& PlanText();
  const std::string& TableName() const { return m_tableName; }

  void MoveFirst();
  void MoveNext();
  void FindFirst(const std::string& criterion);

  void AddNew();
  void Edit();
  void Update();
  void CancelUpdate() { m_edit.reset(); }
  void Delete();

  std::vector<Field>& Fields() { return m_fields; }
  const sql::OutputColumn& InfoOf(std::size_t field) const { return m_select->Columns()[field]; }
  /// Raises UnknownField.
  std::size_t FindField(std::string_view name);
  /// Whether fields can be read as they lie in the current row: it was read before, and nothing stands
  /// between it and its reader.
  bool IsReady() const { return m_ready != nullptr; }
  /// Only when IsReady.
  Value ReadReadyField(std::size_t field) const {
    return m_dynaset->Table().Read(*m_ready, m_dynaset->ColumnOf(field));
  }
  /// The same of the text of a field.
  bool IsReadyText(std::size_t field) const {
    return m_ready != nullptr &&
           (InfoOf(field).type == ColumnType::Text || InfoOf(field).type == ColumnType::Memo);
  }
  std::optional<std::string_view> ReadReadyText(std::size_t field) {
    return m_dynaset->Table().ReadText(*m_ready, m_dynaset->ColumnOf(field), m_text);
  }
  Value ReadField(std::size_t field);
  /// Valid until the next call. Raises CannotConvert.
  std::optional<std::string_view> ReadFieldText(std::size_t field);
  void AssignField(std::size_t field, const Value& value);

  /// Lets go of pages in the cache.
  void ReleaseRow() {
    m_ready = nullptr;
    m_rows->Release();
  }
  /// Depth of the innermost open transaction in which rows were found, added or deleted; 0: of none.
  std::size_t Transaction() const { return m_transaction; }
  /// The transactions deeper than `depth` were committed.
  void MoveToTransaction(std::size_t depth) { m_transaction = std::min(m_transaction, depth); }
  /// Twice is harmless.
  void Close();

 private:
  enum class State {
    AtRow,
    AtEnd,
    NoRow,    ///< nothing was found
    Deleted,  ///< the row under the cursor was deleted through this recordset
  };

  void MoveTo(std::size_t row);
  void CheckCurrentRow() const;
  DynasetRows& UpdatableRows();

  std::shared_ptr<DatabaseCore> m_database;
  bool m_isOpen = true;
  std::shared_ptr<sql::PreparedSelect> m_select;  // its columns are the fields
  sql::StatementNumbers m_numbers;                // of the statement that was run
  std::vector<Field> m_fields;
  std::optional<DynasetRows> m_dynaset;
  std::optional<SnapshotRows> m_snapshot;
  RecordsetRows* m_rows = nullptr;  // the one or the other
  std::string m_tableName;          // the first of the statement
  std::string m_plan;               // once it was asked for
  State m_state = State::AtEnd;
  std::size_t m_row = 0;
  std::size_t m_transaction;
  bool m_noMatch = false;
  std::size_t m_nextField = 0;  // the one behind the field found last
  std::optional<RowEdit> m_edit;
  const format::RowView* m_ready = nullptr;  // the current row of the dynaset
  std::string m_text;                        // what ReadFieldText returned, if it is stored nowhere else
};

}  // namespace jet
