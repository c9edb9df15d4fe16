#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "jet/file/Pager.h"
#include "jet/table/Table.h"

namespace jet {

/// One open database file below the statements: its pages, its catalog and its tables.
class Store {
 public:
  /// The table of that name, in any case; nullptr when there is none. Definitions are read on first use.
  Table* FindTable(std::string_view name);
  /// Names of all tables, system ones too.
  std::vector<std::string> TableNames() const;
  Pager& Pages();
};

}  // namespace jet
