#include "jet/sql/Executor.h"

#include <algorithm>
#include <span>
#include <utility>

#include "jet/Error.h"
#include "jet/sql/Aggregation.h"

namespace jet::sql {
namespace {

// A count of rows is taken from the file; it is believed up to here.
constexpr std::size_t kMostReserved = std::size_t{1} << 20;

RowRef FetchIndexed(const Table& table, std::size_t index, RowId id) {
  std::optional<RowRef> row = table.Fetch(id);
  if (!row) {
    throw Error(ErrorNumber::DamagedFile, "The " + table.IndexAt(index).Where() +
                                              " is damaged: it leads to a row that is not there, page " +
                                              std::to_string(id.page) + " row " + std::to_string(id.slot) +
                                              ".");
  }
  return *std::move(row);
}

}  // namespace

Executor::Executor(const Query& query, const Plan& plan)
    : m_query(&query), m_plan(&plan), m_evaluator(*this), m_rows(query.sources.size()) {}

void Executor::Prepare() {
  m_buffers.resize(m_plan->steps.size());
}

Value Executor::Read(ColumnPlace place) const {
  return TableOf(place.source).Read(m_rows[place.source].row, place.column);
}

std::optional<std::string_view> Executor::ReadText(ColumnPlace place, std::string& buffer) const {
  return TableOf(place.source).ReadText(m_rows[place.source].row, place.column, buffer);
}

template <typename Visit>
void Executor::Run(const Visit& visit) {
  if (!m_plan->nothing) RunStep(0, visit);
}

// `holds`: a filter that is known to hold.
template <typename Visit>
void Executor::Take(std::size_t number, RowId id, const RowRef& row, const BoundExpression* holds,
                    const Visit& visit) {
  const Step& step = m_plan->steps[number];
  m_rows[step.source] = {id, TableOf(step.source).View(row)};
  for (const BoundExpression* filter : step.filters) {
    if (filter != holds && !m_evaluator.Holds(*filter)) return;
  }
  if (number + 1 == m_plan->steps.size()) {
    visit(row);
  } else {
    RunStep(number + 1, visit);
  }
}

template <typename Visit>
void Executor::RunStep(std::size_t number, const Visit& visit) {
  const Step& step = m_plan->steps[number];
  if (!step.access) return RunScan(number, visit);
  switch (FindBounds(TableOf(step.source), *step.access, m_evaluator, m_buffers[number].bounds)) {
    case BoundsFit::Found:
      return RunIndex(number, visit);
    case BoundsFit::NoRow:
      return;
    case BoundsFit::Unknown:
      return RunScan(number, visit);
  }
}

template <typename Visit>
void Executor::RunScan(std::size_t number, const Visit& visit) {
  const Step& step = m_plan->steps[number];
  const Table& table = TableOf(step.source);
  TableScan scan(table);
  if (!step.sieve) {
    while (scan.Next())
      Take(number, scan.Id(), scan.Row(), nullptr, visit);
    return;
  }
  const PrefixSieve sieve = *step.sieve;
  auto verdict = PrefixSieve::Verdict::Unknown;
  const auto isOut = [&](std::span<const std::byte> row) {
    verdict = sieve.Look(table.View(row));
    return verdict == PrefixSieve::Verdict::No;
  };
  for (; scan.NextUnless(isOut); verdict = PrefixSieve::Verdict::Unknown)
    Take(number, scan.Id(), scan.Row(), verdict == PrefixSieve::Verdict::Yes ? step.sieved : nullptr, visit);
}

template <typename Visit>
void Executor::RunIndex(std::size_t number, const Visit& visit) {
  const Step& step = m_plan->steps[number];
  const Table& table = TableOf(step.source);
  const std::size_t index = step.access->index;
  auto& [bounds, rows] = m_buffers[number];
  IndexCursor cursor = table.IndexAt(index).Range(bounds.lower, bounds.upper);
  if (step.access->inKeyOrder) {
    while (cursor.Next()) {
      const RowId id = cursor.Row();
      const RowRef row = FetchIndexed(table, index, id);
      Take(number, id, row, nullptr, visit);
    }
    return;
  }
  rows.clear();
  while (cursor.Next())
    rows.push_back(cursor.Row());
  std::sort(rows.begin(), rows.end());
  for (const RowId id : rows) {
    const RowRef row = FetchIndexed(table, index, id);
    Take(number, id, row, nullptr, visit);
  }
}

// Whether the rows are all those of a table, as they lie.
bool Executor::NeedsNoMoreThanIds() const {
  const Step& step = m_plan->steps.front();
  return !m_plan->nothing && m_plan->sorted && !step.access && step.filters.empty();
}

void Executor::AddTo(RowOrder& order) {
  for (const SortColumn& sort : m_query->order) {
    if (sort.column.type == ColumnType::Text) {
      order.AddText(ReadText(sort.column.place, m_text));
    } else {
      order.Add(Read(sort.column.place));
    }
  }
}

// Runs the plan, and computes the order of its rows.
template <typename Visit>
std::vector<std::size_t> Executor::RunToSort(const Visit& visit) {
  RowOrder order(m_query->order);
  Run([&](const RowRef&) {
    visit();
    AddTo(order);
  });
  if (order.IsComplete()) return order.Sorted();
  RowOrder byValues(m_query->order, RowOrder::By::Values);
  Run([&](const RowRef&) { AddTo(byValues); });
  return byValues.Sorted();
}

FoundRows Executor::FindRows() {
  FoundRows found;
  std::vector<RowId>& rows = found.ids;
  if (NeedsNoMoreThanIds()) {
    const Table& table = TableOf(m_plan->steps.front().source);
    rows.reserve(std::min<std::size_t>(table.RowCount(), kMostReserved));
    for (TableScan scan(table); scan.Next();)
      rows.push_back(scan.Id());
    return found;
  }
  if (m_plan->sorted) {
    Run([&](const RowRef& row) {
      if (rows.empty()) found.first = row;
      rows.push_back(m_rows[0].id);
    });
    return found;
  }
  const auto order = RunToSort([&] { rows.push_back(m_rows[0].id); });
  std::vector<RowId> sorted;
  sorted.reserve(rows.size());
  for (const std::size_t row : order)
    sorted.push_back(rows[row]);
  rows = std::move(sorted);
  return found;
}

ValueRows Executor::ReadRows() {
  return m_query->aggregates ? ReadAggregates() : ReadPlain();
}

ValueRows Executor::ReadPlain() {
  ValueRows rows;
  rows.width = m_query->columns.size();
  const auto take = [&] {
    for (const OutputColumn& column : m_query->columns)
      rows.values.push_back(Read(column.place));
  };
  if (m_plan->sorted) {
    Run([&](const RowRef&) { take(); });
    return rows;
  }
  const auto order = RunToSort(take);
  ValueRows sorted;
  sorted.width = rows.width;
  sorted.values.reserve(rows.values.size());
  for (const std::size_t row : order) {
    for (std::size_t column = 0; column < rows.width; ++column)
      sorted.values.push_back(std::move(rows.values[row * rows.width + column]));
  }
  return sorted;
}

ValueRows Executor::ReadAggregates() {
  ValueRows result;
  result.width = m_query->columns.size();
  if (!m_plan->ends.empty()) {
    for (std::size_t i = 0; i < result.width; ++i)
      result.values.push_back(ReadEnd(m_query->columns[i], m_plan->ends[i]));
    return result;
  }
  std::vector<Aggregation> aggregations(m_query->columns.begin(), m_query->columns.end());
  Run([&](const RowRef&) {
    for (std::size_t i = 0; i < aggregations.size(); ++i) {
      const OutputColumn& column = m_query->columns[i];
      aggregations[i].Add(column.star ? Value(true) : Read(column.place));
    }
  });
  for (const Aggregation& aggregation : aggregations)
    result.values.push_back(aggregation.Result());
  return result;
}

Value Executor::ReadEnd(const OutputColumn& column, const IndexEnd& end) const {
  const Table& table = TableOf(column.place.source);
  const Index& index = table.IndexAt(end.index);
  std::optional<RowId> id;
  if (end.last) {
    // Descending, Nulls stand at the end and their keys begin with this byte, which begins no other.
    const bool ascending = index.Definition().columns.front().ascending;
    id = index.Last(ascending ? KeyBytes{} : KeyBytes{std::byte{0xFF}});
  } else {
    const KeyBytes first = index.FirstNotNull();
    IndexCursor cursor = index.Range(first, {});
    if (cursor.Next()) id = cursor.Row();
  }
  if (!id) return {};
  return table.Read(FetchIndexed(table, end.index, *id), column.place.column);
}

}  // namespace jet::sql
