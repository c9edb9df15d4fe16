#include "jet/dao/RecordsetRows.h"

#include <utility>

#include "jet/Error.h"

namespace jet {

DynasetRows::DynasetRows(Store& store, jet::Table& table, sql::FoundRows rows,
                         const std::vector<sql::OutputColumn>& columns)
    : m_store(&store),
      m_table(&table),
      m_rows(std::move(rows.ids)),
      m_columns(&columns),
      m_foundAtOpening(m_rows.size()),
      m_openedAt(store.Pages().Moment()),
      m_fetched(std::move(rows.first)) {
  if (m_fetched) m_view = m_table->View(*m_fetched);
}

const format::RowView& DynasetRows::FetchAnew(std::size_t row) {
  const RowId id = m_rows[row];
  const std::uint64_t knownAt = row < m_foundAtOpening ? m_openedAt : m_appendedAt[row - m_foundAtOpening];
  m_fetched.reset();
  if (id.page != 0 && !m_store->FreedSince(id.page, knownAt)) m_fetched = m_table->Fetch(id);
  if (!m_fetched)
    throw Error(ErrorNumber::RowDeleted, "The row of table '" + m_table->Name() + "' was deleted.");
  m_fetchedRow = row;
  m_view = m_table->View(*m_fetched);
  return m_view;
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
