#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jet/check/CatalogCheck.h"
#include "jet/check/Findings.h"

namespace jet::check {

/// Checks relationships: their indexes on both sides, and that no row refers to one that is not there.
class RelationCheck {
 public:
  RelationCheck(const CheckedTables& tables, Findings& findings) : m_tables(&tables), m_findings(&findings) {}

  void Run();

 private:
  struct Relation {
    std::string name;
    std::int32_t flags = 0;
    std::size_t columnCount = 0;
    std::string childTable;
    std::string parentTable;
    std::vector<std::string> childColumns;
    std::vector<std::string> parentColumns;
  };
  /// One side: the table, and the positions of the columns in its definition's list.
  struct Side {
    const CheckedTable* checked = nullptr;
    std::vector<std::size_t> columns;
  };

  std::vector<Relation> ReadRelations();
  std::optional<Side> FindSide(const std::string& table, const std::vector<std::string>& columns) const;
  void CheckIndexes(const Relation& relation, const Side& child, const Side& parent);
  void CheckOrphans(const Relation& relation, const Side& child, const Side& parent);
  void CheckStrayIndexes();

  const CheckedTables* m_tables;
  Findings* m_findings;
  std::set<std::pair<PageNumber, std::uint32_t>>
      m_named;  // table and logical number of relationships' indexes
};

}  // namespace jet::check
