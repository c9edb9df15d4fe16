#include "jet/sql/RowOrder.h"

#include <algorithm>
#include <numeric>

#include "jet/sql/Comparison.h"

namespace jet::sql {

bool RowOrder::IsBefore(std::size_t a, std::size_t b) const {
  const std::size_t width = m_columns->size();
  for (std::size_t i = 0; i < width; ++i) {
    const auto order = CompareValues(m_keys[a * width + i], m_keys[b * width + i]);
    if (order != 0) return (order < 0) == (*m_columns)[i].ascending;
  }
  return false;
}

std::vector<std::size_t> RowOrder::Sorted() const {
  std::vector<std::size_t> rows(m_keys.size() / m_columns->size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  std::stable_sort(rows.begin(), rows.end(), [this](std::size_t a, std::size_t b) { return IsBefore(a, b); });
  return rows;
}

}  // namespace jet::sql
