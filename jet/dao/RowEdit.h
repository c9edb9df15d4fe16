#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "jet/table/Table.h"

namespace jet {

/// A row being added or edited: the columns that have been given a value.
class RowEdit {
 public:
  enum class Kind { Add, Edit };

  /// A new row begins with the defaults of its columns, as far as these are constants.
  RowEdit(const Table& table, Kind kind);

  bool IsNew() const { return m_kind == Kind::Add; }
  /// Raises CannotConvert, TextTooLong.
  void Assign(std::size_t column, const Value& value);
  /// A column that was given a value; nullptr for the others.
  const Value* Find(std::size_t column) const { return m_values[column] ? &*m_values[column] : nullptr; }
  /// What a column of a new row holds that was not given a value. Raises FeatureNotSupported for a default
  /// that is no constant, CannotConvert for one that does not fit.
  Value Missing(std::size_t column) const;

  /// All columns that have values, those of defaults included. Raises as Missing does.
  std::vector<ColumnValue> Changes() const;

 private:
  bool HasDefault(std::size_t column) const;

  const Table* m_table;
  Kind m_kind;
  std::vector<std::optional<Value>> m_values;  // by column
};

}  // namespace jet
