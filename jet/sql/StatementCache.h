#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "jet/sql/Ast.h"

namespace jet::sql {

/// Keeps the statements used last in parsed form, so that the same text is not parsed again.
class StatementCache {
 public:
  explicit StatementCache(std::size_t capacity = 64) : m_capacity(capacity) {}

  /// Raises what ParseSelect raises.
  std::shared_ptr<const SelectStatement> Get(const std::string& text);

  std::size_t Size() const { return m_entries.size(); }

 private:
  using Entry = std::pair<std::string, std::shared_ptr<const SelectStatement>>;

  std::size_t m_capacity;
  std::list<Entry> m_entries;                                                 // used last first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> m_byText;  // the texts of m_entries
};

}  // namespace jet::sql
