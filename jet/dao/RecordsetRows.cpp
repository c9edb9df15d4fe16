#include "jet/dao/RecordsetRows.h"

#include <utility>

#include "jet/Error.h"

namespace jet {

DynasetRows::DynasetRows(Store& store, jet::Table& table, std::vector<RowId> rows,
                         std::vector<std::size_t> columns)
    : m_store(&store),
      m_table(&table),
      m_rows(std::move(rows)),
      m_columns(std::move(columns)),
      m_foundAtOpening(m_rows.size()),
      m_openedAt(store.Pages().Moment()) {}

const RowRef& DynasetRows::Fetch(std::size_t row) {
  if (m_fetched && m_fetchedRow == row) return *m_fetched;
  const RowId id = m_rows[row];
  const std::uint64_t knownAt = row < m_foundAtOpening ? m_openedAt : m_appendedAt[row - m_foundAtOpening];
  m_fetched.reset();
  if (id.page != 0 && !m_store->FreedSince(id.page, knownAt)) m_fetched = m_table->Fetch(id);
  if (!m_fetched)
    throw Error(ErrorNumber::RowDeleted, "The row of table '" + m_table->Name() + "' was deleted.");
  m_fetchedRow = row;
  return *m_fetched;
}

const std::string* DynasetRows::ReadText(std::size_t row, std::size_t field) {
  return m_table->ReadText(Fetch(row), m_columns[field], m_text) ? &m_text : nullptr;
}

RowId DynasetRows::IdOf(std::size_t row) {
  Fetch(row);
  return m_rows[row];
}

void DynasetRows::Release() {
  m_fetched.reset();
}

void DynasetRows::Append(RowId id) {
  m_rows.push_back(id);
  m_appendedAt.push_back(m_store->Pages().Moment());
}

}  // namespace jet
