#include "jet/sql/RowOrder.h"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>
#include <utility>

#include "jet/format/Bytes.h"
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
std::uint64_t FirstBytes(std::span<const std::byte> bytes) {
  if (bytes.size() >= 8) return format::LoadBigU64(bytes.data());
  std::uint64_t number = 0;
  for (std::size_t i = 0; i < 8; ++i)
    number = number << 8 | (i < bytes.size() ? std::to_integer<std::uint64_t>(bytes[i]) : 0);
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

// Bytes that all keys begin with: many after a search for the beginning of a name.
std::size_t RowOrder::SharedByAll() const {
  std::span<const std::byte> shared = KeyOf(0);
  for (std::size_t row = 1; row < m_ends.size() && !shared.empty(); ++row) {
    const std::span<const std::byte> key = KeyOf(row);
    if (key.size() < shared.size()) shared = shared.first(key.size());
    std::size_t i = 0;
    while (i < shared.size() && key[i] == shared[i])
      ++i;
    shared = shared.first(i);
  }
  return shared.size();
}

std::vector<std::size_t> RowOrder::SortedByKeys() const {
  if (m_ends.empty()) return {};
  const std::size_t shared = SharedByAll();
  std::vector<Key> keys(m_ends.size());
  for (std::size_t row = 0; row < keys.size(); ++row)
    keys[row] = {FirstBytes(KeyOf(row).subspan(shared)), row};
  std::sort(keys.begin(), keys.end(), [&](const Key& a, const Key& b) {
    if (a.first != b.first) return a.first < b.first;
    const std::span<const std::byte> keyA = KeyOf(a.row);
    const std::span<const std::byte> keyB = KeyOf(b.row);
    const int order = std::memcmp(keyA.data(), keyB.data(), std::min(keyA.size(), keyB.size()));
    if (order != 0) return order < 0;
    return keyA.size() != keyB.size() ? keyA.size() < keyB.size() : a.row < b.row;
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
