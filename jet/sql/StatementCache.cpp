#include "jet/sql/StatementCache.h"

namespace jet::sql {

std::shared_ptr<PreparedSelect> StatementCache::Get(std::string_view statement, Store& store) {
  // Most callers run statements of one shape one after the other.
  if (!m_entries.empty() && m_shape.TakeIfLike(m_entries.front().shape, statement) &&
      m_entries.front().select->Put(m_shape.numbers))
    return m_entries.front().select;
  m_shape.Take(statement);
  if (const auto found = m_byShape.find(m_shape.text); found != m_byShape.end()) {
    if (found->second != m_entries.begin()) m_entries.splice(m_entries.begin(), m_entries, found->second);
    const std::shared_ptr<PreparedSelect>& select = m_entries.front().select;
    // A statement that contains placeholders normalizes to the same text with fewer numbers.
    if (select->Put(m_shape.numbers)) return select;
  }
  auto select = std::make_shared<PreparedSelect>(statement, m_shape, store);
  if (!select->ServesShape()) return select;
  m_entries.push_front({m_shape.text, select});
  m_byShape.emplace(m_entries.front().shape, m_entries.begin());
  if (m_entries.size() > m_capacity) {
    m_byShape.erase(m_entries.back().shape);
    m_entries.pop_back();
  }
  return select;
}

void StatementCache::Clear() {
  m_byShape.clear();
  m_entries.clear();
}

}  // namespace jet::sql
