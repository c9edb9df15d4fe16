#include "jet/dao/RowEdit.h"

#include "jet/Error.h"
#include "jet/dao/Conversion.h"

namespace jet {

RowEdit::RowEdit(const Table& table, Kind kind)
    : m_table(&table), m_kind(kind), m_values(table.Definition().columns.size()) {
  if (kind == Kind::Edit) return;
  for (std::size_t column = 0; column < m_values.size(); ++column) {
    if (!HasDefault(column)) continue;
    try {
      m_values[column] = Missing(column);
    } catch (const Error&) {
      // The row may do without it; if it does not, Changes raises this.
    }
  }
}

bool RowEdit::HasDefault(std::size_t column) const {
  const format::ColumnDefinition& definition = m_table->Definition().columns[column];
  return !definition.IsAutoNumber() && !definition.IsAutoGuid() &&
         m_table->Rules(column).defaultValue.has_value();
}

Value RowEdit::Missing(std::size_t column) const {
  const format::ColumnDefinition& definition = m_table->Definition().columns[column];
  if (!HasDefault(column)) return definition.type == ColumnType::YesNo ? Value(false) : Value();
  const std::string& expression = *m_table->Rules(column).defaultValue;
  Value value;
  try {
    value = EvaluateDefault(expression);
  } catch (const Error& error) {
    throw Error(ErrorNumber::FeatureNotSupported, "Column '" + definition.name + "' of table '" +
                                                      m_table->Name() + "' needs a value: its default, " +
                                                      expression + ", cannot be evaluated. " + error.what());
  }
  return ConvertForColumn(value, definition, m_table->Name());
}

void RowEdit::Assign(std::size_t column, const Value& value) {
  m_values[column] = ConvertForColumn(value, m_table->Definition().columns[column], m_table->Name());
}

std::vector<ColumnValue> RowEdit::Changes() const {
  std::vector<ColumnValue> changes;
  changes.reserve(m_values.size());
  for (std::size_t column = 0; column < m_values.size(); ++column) {
    if (m_values[column]) {
      changes.push_back({column, *m_values[column]});
    } else if (IsNew() && HasDefault(column)) {
      changes.push_back({column, Missing(column)});
    }
  }
  return changes;
}

}  // namespace jet
