#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

#include "jet/Value.h"

namespace jet {

class Table;

/// A row on its way into a table, with all its values.
struct IncomingRow {
  std::function<Value(std::size_t column)> read;  ///< by position in the definition's list
  const std::vector<bool>& assigned;              ///< by column: whether the change assigns it
  bool isNew = false;
};

/// The validation rules of a table and of its columns, ready to be evaluated. Expressions are the business of
/// a layer above the tables, which implements this.
class RowRules {
 public:
  virtual ~RowRules() = default;
  /// Raises RuleViolated when a rule does not hold; FeatureNotSupported when a rule cannot be evaluated: of
  /// the table, of an assigned column, or of any column of a new row.
  virtual void Check(const IncomingRow& row) const = 0;
};

/// Reads the rules of a table; see Store::UseRules.
using MakeRowRules = std::unique_ptr<RowRules> (*)(const Table& table);

}  // namespace jet
