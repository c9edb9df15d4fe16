#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "jet/check/Findings.h"
#include "jet/check/TableCheck.h"
#include "jet/table/Store.h"

namespace jet::check {

/// Tables that could be read, by their definition pages.
using CheckedTables = std::map<PageNumber, CheckedTable>;

/// Checks what the system tables say against each other and against the tables.
class CatalogCheck {
 public:
  CatalogCheck(const CheckedTables& tables, Findings& findings) : m_tables(&tables), m_findings(&findings) {}

  void Run();

 private:
  struct Object {
    std::int32_t id = 0;
    std::int32_t parent = 0;
    std::int32_t type = 0;
    std::string name;
  };

  void ReadObjects();
  void CheckProperties(const Object& object, const Value& blob);
  void CheckObjects();
  void CheckRights();
  void CheckRelationNames();

  const CheckedTables* m_tables;
  Findings* m_findings;
  std::vector<Object> m_objects;
  std::map<std::int32_t, std::size_t> m_byId;
};

/// The values of some columns of all rows of a table that could be read, a row each. Raises DamagedFile for a
/// column that the table does not have; rows that cannot be read are left out.
std::vector<std::vector<Value>> ReadColumns(const CheckedTable& checked,
                                            const std::vector<std::string_view>& columns);

}  // namespace jet::check
