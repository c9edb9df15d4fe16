#include "jet/sql/StatementCache.h"

#include "jet/sql/Parser.h"

namespace jet::sql {

std::shared_ptr<const SelectStatement> StatementCache::Get(const std::string& text) {
  if (const auto found = m_byText.find(text); found != m_byText.end()) {
    m_entries.splice(m_entries.begin(), m_entries, found->second);
    return m_entries.front().second;
  }
  auto statement = std::make_shared<const SelectStatement>(ParseSelect(text));
  m_entries.emplace_front(text, statement);
  m_byText.emplace(m_entries.front().first, m_entries.begin());
  if (m_entries.size() > m_capacity) {
    m_byText.erase(m_entries.back().first);
    m_entries.pop_back();
  }
  return statement;
}

}  // namespace jet::sql
