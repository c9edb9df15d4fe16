#include "jet/sql/RowOrder.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <utility>

#include "jet/format/IndexKey.h"
#include "jet/sql/Comparison.h"
#include "jet/sql/KeyFit.h"

namespace jet::sql {
namespace {

/// Whether keys of such a column compare as its values do.
bool HasFaithfulKeys(ColumnType type) {
  switch (type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Text:
      return true;
    default:
      return false;
  }
}

/// Up to eight bytes as a number that compares as they do.
std::uint64_t FirstBytes(const std::byte* bytes, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < 8; ++i)
    number = number << 8 | (i < size ? std::to_integer<std::uint64_t>(bytes[i]) : 0);
  return number;
}

}  // namespace

RowOrder::RowOrder(const std::vector<SortColumn>& columns)
    : RowOrder(columns, std::all_of(columns.begin(), columns.end(),
                                    [](const SortColumn& sort) { return HasFaithfulKeys(sort.column.type); })
                            ? By::Keys
                            : By::Values) {}

template <typename Append>
void RowOrder::AddKey(const Append& append) {
  if (!m_isComplete) return;
  const SortColumn& sort = (*m_columns)[m_next];
  format::ColumnDefinition column;
  column.type = sort.column.type;
  m_isComplete = append(column, sort.ascending);
  m_next = m_next + 1 < m_columns->size() ? m_next + 1 : 0;
  if (m_next == 0) m_ends.push_back(m_bytes.size());
}

void RowOrder::Add(Value value) {
  if (m_by == By::Keys) {
    AddKey([&](const format::ColumnDefinition& column, bool ascending) {
      return format::AppendKeyColumn(m_bytes, value, column, ascending);
    });
  } else {
    m_values.push_back(std::move(value));
  }
}

void RowOrder::AddText(std::optional<std::string_view> text) {
  if (m_by == By::Keys) {
    AddKey([&](const format::ColumnDefinition& column, bool ascending) {
      return (!text || text->size() <= kMostKeyBytes) &&
             format::AppendTextKeyColumn(m_bytes, text, column, ascending);
    });
  } else {
    m_values.push_back(text ? Value(std::string(*text)) : Value());
  }
}

std::vector<std::size_t> RowOrder::Sorted() const {
  return m_by == By::Keys ? SortedByKeys() : SortedByValues();
}

std::vector<std::size_t> RowOrder::SortedByKeys() const {
  std::vector<Key> keys(m_ends.size());
  std::size_t begin = 0;
  for (std::size_t row = 0; row < keys.size(); ++row) {
    const std::size_t end = m_ends[row];
    keys[row] = {FirstBytes(m_bytes.data() + begin, end - begin), begin, end, row};
    begin = end;
  }
  std::sort(keys.begin(), keys.end(), [this](const Key& a, const Key& b) {
    if (a.first != b.first) return a.first < b.first;
    const std::size_t sizeA = a.end - a.begin;
    const std::size_t sizeB = b.end - b.begin;
    const int order = std::memcmp(m_bytes.data() + a.begin, m_bytes.data() + b.begin, std::min(sizeA, sizeB));
    if (order != 0) return order < 0;
    return sizeA != sizeB ? sizeA < sizeB : a.row < b.row;
  });
  std::vector<std::size_t> rows;
  rows.reserve(keys.size());
  for (const Key& key : keys)
    rows.push_back(key.row);
  return rows;
}

std::vector<std::size_t> RowOrder::SortedByValues() const {
  const std::size_t width = m_columns->size();
  std::vector<std::size_t> rows(m_values.size() / width);
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  std::stable_sort(rows.begin(), rows.end(), [&](std::size_t a, std::size_t b) {
    for (std::size_t i = 0; i < width; ++i) {
      const auto order = CompareValues(m_values[a * width + i], m_values[b * width + i]);
      if (order != 0) return (order < 0) == (*m_columns)[i].ascending;
    }
    return false;
  });
  return rows;
}

}  // namespace jet::sql
