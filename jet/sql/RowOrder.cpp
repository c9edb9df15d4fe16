#include "jet/sql/RowOrder.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>

#include "jet/format/SortKey.h"
#include "jet/sql/Comparison.h"

namespace jet::sql {
namespace {

// Keys look at no more of a text.
constexpr std::size_t kMostKeyBytes = 255;

}  // namespace

// Keys of texts compare as the texts do, but much faster.
void RowOrder::MakeTextKeys(std::size_t column) {
  m_textKeys.resize(m_keys.size());
  for (std::size_t i = column; i < m_keys.size(); i += m_columns->size()) {
    const auto* const text = m_keys[i].As<std::string>();
    if (text != nullptr && text->size() <= kMostKeyBytes) format::AppendTextKey(*text, m_textKeys[i]);
  }
}

bool RowOrder::IsBefore(std::size_t a, std::size_t b) const {
  const std::size_t width = m_columns->size();
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t atA = a * width + i;
    const std::size_t atB = b * width + i;
    const bool haveKeys = !m_textKeys.empty() && !m_textKeys[atA].empty() && !m_textKeys[atB].empty();
    const auto order =
        haveKeys ? m_textKeys[atA] <=> m_textKeys[atB] : CompareValues(m_keys[atA], m_keys[atB]);
    if (order != 0) return (order < 0) == (*m_columns)[i].ascending;
  }
  return false;
}

std::vector<std::size_t> RowOrder::Sorted() {
  for (std::size_t column = 0; column < m_columns->size(); ++column) {
    if (KindOf((*m_columns)[column].column.type) == ValueKind::Text) MakeTextKeys(column);
  }
  std::vector<std::size_t> rows(m_keys.size() / m_columns->size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  std::stable_sort(rows.begin(), rows.end(), [this](std::size_t a, std::size_t b) { return IsBefore(a, b); });
  return rows;
}

}  // namespace jet::sql
