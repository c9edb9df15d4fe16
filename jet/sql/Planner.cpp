#include "jet/sql/Planner.h"

#include <algorithm>
#include <utility>

#include "jet/sql/KeyBounds.h"
#include "jet/sql/KeyFit.h"

namespace jet::sql {
namespace {

using Kind = Expression::Kind;

// Scores: the more rows an access leaves out, the better.
constexpr int kWholeUniqueKey = 100000;
constexpr int kEqualColumn = 1000;
constexpr int kRange = 400;
constexpr int kServesOrder = 100;
constexpr int kPrimary = 1;

Comparison Mirrored(Comparison comparison) {
  switch (comparison) {
    case Comparison::Less:
      return Comparison::Greater;
    case Comparison::LessOrEqual:
      return Comparison::GreaterOrEqual;
    case Comparison::Greater:
      return Comparison::Less;
    case Comparison::GreaterOrEqual:
      return Comparison::LessOrEqual;
    default:
      return comparison;
  }
}

const char* SignOf(Comparison comparison) {
  switch (comparison) {
    case Comparison::Less:
      return "<";
    case Comparison::LessOrEqual:
      return "<=";
    case Comparison::Greater:
      return ">";
    case Comparison::GreaterOrEqual:
      return ">=";
    case Comparison::NotEqual:
      return "<>";
    default:
      return "=";
  }
}

}  // namespace

Planner::Planner(const Query& query) : m_query(&query) {
  for (const BoundExpression& condition : query.conditions)
    CollectUsable(condition);
}

void Planner::CollectUsable(const BoundExpression& condition) {
  if (condition.kind != Kind::Compare || condition.comparison == Comparison::NotEqual) return;
  for (const bool mirrored : {false, true}) {
    const BoundExpression& column = condition.operands[mirrored ? 1 : 0];
    const BoundExpression& operand = condition.operands[mirrored ? 0 : 1];
    if (column.kind != Kind::Column || (operand.kind != Kind::Column && operand.kind != Kind::Literal))
      continue;
    if (operand.kind == Kind::Column && operand.column.place.source == column.column.place.source) continue;
    m_usable.push_back(
        {mirrored ? Mirrored(condition.comparison) : condition.comparison, column.column.place, &operand});
  }
}

// Whether a condition that compares with a literal can hold for no row at all.
bool Planner::NeverHolds(const BoundExpression& condition) const {
  if (condition.kind == Kind::Literal) return condition.literal.IsNull() || condition.literal == Value(false);
  if (condition.kind != Kind::Compare) return false;
  return std::any_of(condition.operands.begin(), condition.operands.end(),
                     [](const BoundExpression& operand) {
                       return operand.kind == Kind::Literal && operand.literal.IsNull();
                     });
}

// What a column must be equal to; rather a literal than a column of another table.
const BoundExpression* Planner::EqualTo(ColumnPlace place, const std::vector<bool>& bound) const {
  const format::ColumnDefinition& column = TableOf(place.source).Definition().columns[place.column];
  const BoundExpression* joined = nullptr;
  for (const Usable& usable : m_usable) {
    if (usable.place != place || usable.comparison != Comparison::Equal) continue;
    if (usable.operand->kind == Kind::Column) {
      if (bound[usable.operand->column.place.source]) joined = usable.operand;
    } else if (Value key; FitKey(usable.operand->literal, column, key) != KeyFit::Unknown) {
      return usable.operand;
    }
  }
  return joined;
}

// Comparisons of the first column that is not equal to anything.
void Planner::AddRanges(std::size_t source, IndexAccess& access) const {
  const Table& table = TableOf(source);
  const std::vector<std::size_t>& columns = table.IndexColumns(access.index);
  const auto& directions = table.IndexAt(access.index).Definition().columns;
  const std::size_t next = access.equal.size();
  if (next >= columns.size()) return;
  const format::ColumnDefinition& column = table.Definition().columns[columns[next]];
  if (!HasKeyOrder(column.type)) return;
  for (const Usable& usable : m_usable) {
    if (usable.place != ColumnPlace{source, columns[next]} || usable.comparison == Comparison::Equal)
      continue;
    if (!HasBound(*usable.operand, column, directions[next].ascending)) continue;
    access.ranges.push_back(
        {directions[next].ascending ? usable.comparison : Mirrored(usable.comparison), usable.operand});
  }
}

// Whether the literals of an access have a key: not a text with characters whose place in the order is not
// known.
bool Planner::HasConstantKey(std::size_t source, const IndexAccess& access) const {
  const Table& table = TableOf(source);
  const auto& directions = table.IndexAt(access.index).Definition().columns;
  for (std::size_t i = 0; i < access.equal.size(); ++i) {
    const format::ColumnDefinition& column = table.Definition().columns[table.IndexColumns(access.index)[i]];
    Value key;
    if (FitKey(access.equal[i]->literal, column, key) == KeyFit::NoRow) continue;
    if (!HasBound(*access.equal[i], column, directions[i].ascending)) return false;
  }
  return true;
}

// Whether rows in the order of the index, whose first columns are held equal, are in the order wanted.
bool Planner::ServesOrder(std::size_t source, std::size_t index, std::size_t equalColumns) const {
  if (!m_query->IsPlain()) return false;
  const Table& table = TableOf(source);
  const std::vector<std::size_t>& columns = table.IndexColumns(index);
  const auto& directions = table.IndexAt(index).Definition().columns;
  std::size_t next = equalColumns;
  for (const SortColumn& wanted : m_query->order) {
    const auto end = columns.begin() + static_cast<std::ptrdiff_t>(next);
    if (std::find(columns.begin(), end, wanted.column.place.column) != end) continue;  // decided already
    if (next >= columns.size() || next >= directions.size()) return false;
    if (columns[next] != wanted.column.place.column || directions[next].ascending != wanted.ascending)
      return false;
    if (!HasKeyOrder(wanted.column.type)) return false;
    ++next;
  }
  return true;
}

std::optional<Planner::Candidate> Planner::Try(std::size_t source, std::size_t index,
                                               const std::vector<bool>& bound) const {
  const Table& table = TableOf(source);
  const std::vector<std::size_t>& columns = table.IndexColumns(index);
  const format::IndexDefinition& definition = table.IndexAt(index).Definition();
  if (columns.size() != definition.columns.size())
    return std::nullopt;  // a column that is not there any more
  IndexAccess access;
  access.index = index;
  for (const std::size_t column : columns) {
    const BoundExpression* const operand = EqualTo({source, column}, bound);
    if (operand == nullptr) break;
    access.equal.push_back(operand);
    access.isConstant = access.isConstant && operand->kind == Kind::Literal;
  }
  if (access.isConstant) {
    if (!HasConstantKey(source, access)) return std::nullopt;
    AddRanges(source, access);
  }
  const bool hasRange = !access.ranges.empty();
  const std::size_t equal = access.equal.size();
  const bool primary = table.PrimaryIndex() == index;
  const bool serves = access.isConstant && ServesOrder(source, index, equal);
  const bool wholeKey = equal == columns.size() && definition.IsUnique();
  // Without a condition on it, an index is only worth its order, if it has all rows.
  if (equal == 0 && !hasRange) {
    if (!serves || m_query->order.empty() || definition.IgnoresNulls()) return std::nullopt;
  }
  access.inKeyOrder = primary || (serves && !m_query->order.empty());
  Candidate candidate;
  candidate.score = (wholeKey ? kWholeUniqueKey : 0) + static_cast<int>(equal) * kEqualColumn +
                    (hasRange ? kRange : 0) + (serves && !m_query->order.empty() ? kServesOrder : 0) +
                    (primary ? kPrimary : 0);
  candidate.access = std::move(access);
  return candidate;
}

Planner::Candidate Planner::Best(std::size_t source, const std::vector<bool>& bound) const {
  Candidate best;
  for (std::size_t index = 0; index < TableOf(source).IndexCount(); ++index) {
    std::optional<Candidate> candidate = Try(source, index, bound);
    if (candidate && candidate->score > best.score) best = *std::move(candidate);
  }
  return best;
}

// Joins the tables, beginning with one, always going on with the one that is found best.
Planner::Order Planner::StartingWith(std::size_t source) const {
  Order order;
  std::vector<bool> bound(m_query->sources.size());
  const std::vector<bool> none = bound;
  Candidate first = Best(source, none);
  order.firstScore = first.score;
  order.steps.push_back({source, std::move(first.access), {}, {}});
  bound[source] = true;
  while (order.steps.size() < m_query->sources.size()) {
    std::optional<std::size_t> next;
    Candidate best;
    for (std::size_t i = 0; i < bound.size(); ++i) {
      if (bound[i]) continue;
      Candidate candidate = Best(i, bound);
      if (next && candidate.score <= best.score) continue;
      next = i;
      best = std::move(candidate);
    }
    if (!best.access) ++order.scans;
    order.steps.push_back({*next, std::move(best.access), {}, {}});
    bound[*next] = true;
  }
  return order;
}

void Planner::AddFilters(std::vector<Step>& steps) const {
  for (const BoundExpression& condition : m_query->conditions) {
    std::size_t last = 0;
    ForEachColumn(condition, [&](ColumnPlace place) {
      for (std::size_t step = 0; step < steps.size(); ++step) {
        if (steps[step].source == place.source) last = std::max(last, step);
      }
    });
    steps[last].filters.push_back(&condition);
  }
  for (Step& step : steps) {
    for (const BoundExpression* filter : step.filters) {
      if (step.access || step.sieve) continue;
      step.sieve = PrefixSieve::Of(*filter, step.source, TableOf(step.source).Definition());
      step.sieved = filter;
    }
  }
}

// For each column of the result the end of an index that it is read off; nothing when one has none.
std::vector<IndexEnd> Planner::FindEnds() const {
  std::vector<IndexEnd> ends;
  if (!m_query->aggregates || m_query->sources.size() != 1 || !m_query->conditions.empty()) return ends;
  const Table& table = TableOf(0);
  for (const OutputColumn& column : m_query->columns) {
    const bool isEnd = column.aggregate == Aggregate::Max || column.aggregate == Aggregate::Min;
    if (!isEnd || !HasKeyOrder(column.type)) return {};
    const std::size_t before = ends.size();
    for (std::size_t i = 0; i < table.IndexCount() && ends.size() == before; ++i) {
      const std::vector<std::size_t>& columns = table.IndexColumns(i);
      if (columns.empty() || columns.front() != column.place.column) continue;
      const bool ascending = table.IndexAt(i).Definition().columns.front().ascending;
      ends.push_back({i, ascending == (column.aggregate == Aggregate::Max)});
    }
    if (ends.size() == before) return {};
  }
  return ends;
}

std::string Planner::TextOf(const Step& step) const {
  const SourceTable& source = m_query->sources[step.source];
  const Table& table = *source.table;
  if (!step.access) return "scan of " + table.Name();
  std::string text = table.Name() + ": index " + table.IndexName(step.access->index);
  const char* separator = " = ";
  for (const BoundExpression* operand : step.access->equal) {
    text += separator + operand->text;
    separator = ", ";
  }
  const std::vector<std::size_t>& columns = table.IndexColumns(step.access->index);
  const std::size_t equal = step.access->equal.size();
  if (step.access->isConstant && equal < columns.size()) {
    for (const Usable& usable : m_usable) {
      const bool isRange = usable.comparison != Comparison::Equal && usable.operand->kind == Kind::Literal;
      if (isRange && usable.place == ColumnPlace{step.source, columns[equal]})
        text += std::string(" ") + SignOf(usable.comparison) + " " + usable.operand->text;
    }
  }
  if (step.access->inKeyOrder && !m_query->order.empty() &&
      ServesOrder(step.source, step.access->index, equal))
    text += " in its order";
  return text;
}

std::string Planner::TextOf(const Plan& plan) const {
  if (plan.nothing) return "nothing: a condition can never hold";
  std::string text;
  if (!plan.ends.empty()) {
    text = TableOf(0).Name() + ": end of index " + TableOf(0).IndexName(plan.ends.front().index);
    for (std::size_t i = 1; i < plan.ends.size(); ++i)
      text += ", of index " + TableOf(0).IndexName(plan.ends[i].index);
    return text;
  }
  for (const Step& step : plan.steps)
    text += (text.empty() ? "" : "; ") + TextOf(step);
  if (!plan.sorted) text += "; sorted";
  return text;
}

Plan Planner::Make() {
  Plan plan;
  plan.nothing = std::any_of(m_query->conditions.begin(), m_query->conditions.end(),
                             [&](const BoundExpression& condition) { return NeverHolds(condition); });
  plan.ends = FindEnds();
  std::optional<Order> best;
  for (std::size_t source = 0; source < m_query->sources.size(); ++source) {
    Order order = StartingWith(source);
    if (best &&
        (order.scans > best->scans || (order.scans == best->scans && order.firstScore <= best->firstScore)))
      continue;
    best = std::move(order);
  }
  plan.steps = std::move(best->steps);
  AddFilters(plan.steps);
  const std::optional<IndexAccess>& access = plan.steps.front().access;
  plan.sorted =
      m_query->order.empty() || (access && access->inKeyOrder &&
                                 ServesOrder(plan.steps.front().source, access->index, access->equal.size()));
  plan.text = TextOf(plan);
  return plan;
}

Plan MakePlan(const Query& query) {
  return Planner(query).Make();
}

}  // namespace jet::sql
