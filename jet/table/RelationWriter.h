#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/TableSpec.h"
#include "jet/format/TableDefinition.h"
#include "jet/table/Store.h"

namespace jet {

/// Makes one relationship. The constructor checks it against both tables and raises InvalidDefinition or
/// ObjectExists; Write, inside a change unit, makes it.
class RelationWriter {
 public:
  RelationWriter(Store& store, Table& child, Table& parent, RelationInfo relation);

  /// Raises NoReferredRow when a row of the child refers to no row of the parent, FeatureNotSupported for a
  /// value that no key is known for.
  void Write();

 private:
  void FindColumns();
  void FindParentIndex();
  void FindChildIndex();
  void LinkDefinitions();
  void CheckRows() const;
  void AddToCatalog() const;
  std::uint32_t Attributes() const;
  std::string HiddenName(const format::TableDefinition& definition, std::uint32_t number) const;

  Store* m_store;
  Table* m_child;
  Table* m_parent;
  RelationInfo m_relation;
  // Pairs of columns, by position in the definitions' lists; for an enforced relationship in the order of the
  // parent's index.
  std::vector<std::size_t> m_childColumns;
  std::vector<std::size_t> m_parentColumns;
  std::size_t m_parentIndex = 0;            ///< enforced only
  std::optional<std::size_t> m_childIndex;  ///< the child's index on just these columns, if it has one
};

/// Writes a changed definition of a table, giving new indexes their pages, and has the table read it. Inside
/// a change unit.
void ChangeDefinition(Table& table, format::TableDefinition& definition);

}  // namespace jet
