#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "jet/sql/PreparedSelect.h"
#include "jet/sql/StatementShape.h"

namespace jet::sql {

/// Keeps the statements used last ready to be run, so that those of one shape are parsed and planned once.
class StatementCache {
 public:
  explicit StatementCache(std::size_t capacity = 64) : m_capacity(capacity) {}

  /// The statement, with its numbers in it. Raises what PreparedSelect raises.
  std::shared_ptr<PreparedSelect> Get(std::string_view statement, Store& store);
  /// The numbers of the statement asked for last.
  const StatementNumbers& Numbers() const { return m_shape.numbers; }

  /// Forgets all: the schema is about to change, or has changed.
  void Clear();
  std::size_t Size() const { return m_entries.size(); }

 private:
  struct Entry {
    std::string shape;
    std::shared_ptr<PreparedSelect> select;
  };

  std::size_t m_capacity;
  StatementShape m_shape;
  std::list<Entry> m_entries;                                                  // used last first
  std::unordered_map<std::string_view, std::list<Entry>::iterator> m_byShape;  // the shapes of m_entries
};

}  // namespace jet::sql
