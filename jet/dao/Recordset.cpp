#include "jet/dao/Recordset.h"

#include <utility>

#include "jet/Error.h"
#include "jet/dao/RecordsetCore.h"

namespace jet {
namespace {

/// Tells the observer of the call, and refuses it when the recordset is closed.
RecordsetCore& Enter(RecordsetCore& core, const char* call) {
  core.Database().Observe(call);
  core.CheckOpen();
  return core;
}
template <typename Text>
RecordsetCore& Enter(RecordsetCore& core, const char* call, const Text& detail) {
  core.Database().Observe(call, detail);
  core.CheckOpen();
  return core;
}

}  // namespace

bool Recordset::Eof() const {
  return Enter(*m_core, "Recordset.Eof").IsAtEnd();
}
void Recordset::MoveNext() {
  Enter(*m_core, "Recordset.MoveNext").MoveNext();
}
void Recordset::MoveFirst() {
  Enter(*m_core, "Recordset.MoveFirst").MoveFirst();
}
void Recordset::FindFirst(const std::string& criterion) {
  Enter(*m_core, "Recordset.FindFirst", criterion).FindFirst(criterion);
}
bool Recordset::NoMatch() const {
  return Enter(*m_core, "Recordset.NoMatch").NoMatch();
}
void Recordset::AddNew() {
  Enter(*m_core, "Recordset.AddNew").AddNew();
}
void Recordset::Edit() {
  Enter(*m_core, "Recordset.Edit").Edit();
}
void Recordset::Update() {
  Enter(*m_core, "Recordset.Update").Update();
}
void Recordset::CancelUpdate() {
  Enter(*m_core, "Recordset.CancelUpdate").CancelUpdate();
}
void Recordset::Delete() {
  Enter(*m_core, "Recordset.Delete").Delete();
}
void Recordset::Close() {
  m_core->Database().Observe("Recordset.Close");
  m_core->Close();
}

Field& Recordset::Fields(std::string_view name) {
  RecordsetCore& core = Enter(*m_core, "Recordset.Fields", name);
  return core.Fields()[core.FindField(name)];
}
Field& Recordset::Fields(std::size_t ordinal) {
  std::vector<Field>& fields = Enter(*m_core, "Recordset.Fields").Fields();
  if (ordinal >= fields.size()) {
    throw Error(ErrorNumber::UnknownField, "The recordset has " + std::to_string(fields.size()) +
                                               " columns and none with the number " +
                                               std::to_string(ordinal) + ".");
  }
  return fields[ordinal];
}
std::size_t Recordset::FieldCount() const {
  return Enter(*m_core, "Recordset.FieldCount").Fields().size();
}
bool Recordset::Updatable() const {
  return Enter(*m_core, "Recordset.Updatable").IsUpdatable();
}
const std::string& Recordset::TableName() const {
  return Enter(*m_core, "Recordset.TableName").TableName();
}
const std::string& Recordset::Plan() const {
  return Enter(*m_core, "Recordset.Plan").PlanText();
}

const std::string& Field::Name() const {
  const std::string& name = m_recordset.InfoOf(m_ordinal).name;
  Enter(m_recordset, "Field.Name", name);
  return name;
}
ColumnType Field::Type() const {
  const sql::OutputColumn& info = m_recordset.InfoOf(m_ordinal);
  Enter(m_recordset, "Field.Type", info.name);
  return info.type;
}
Value Field::Value() const {
  if (m_recordset.IsReady()) return m_recordset.ReadReadyField(m_ordinal);
  return Enter(m_recordset, "Field.Value", m_recordset.InfoOf(m_ordinal).name).ReadField(m_ordinal);
}
std::optional<std::string_view> Field::Text() const {
  if (m_recordset.IsReadyText(m_ordinal)) return m_recordset.ReadReadyText(m_ordinal);
  return Enter(m_recordset, "Field.Text", m_recordset.InfoOf(m_ordinal).name).ReadFieldText(m_ordinal);
}
void Field::Value(const jet::Value& value) {
  Enter(m_recordset, "Field.Value=", m_recordset.InfoOf(m_ordinal).name).AssignField(m_ordinal, value);
}

}  // namespace jet
