#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "jet/sql/Evaluator.h"
#include "jet/sql/KeyBounds.h"
#include "jet/sql/Plan.h"
#include "jet/sql/RowOrder.h"
#include "jet/table/RowStore.h"
#include "jet/table/Table.h"

namespace jet::sql {

/// Rows of values, one behind the other.
struct ValueRows {
  std::size_t width = 0;
  std::vector<Value> values;

  std::size_t Count() const { return width == 0 ? 0 : values.size() / width; }
  const Value& At(std::size_t row, std::size_t column) const { return values[row * width + column]; }
};

/// Rows of one table by where they live.
struct FoundRows {
  std::vector<RowId> ids;
  std::optional<RowRef> first;  ///< the first one, if it was looked at
};

/// Runs a plan. Raises what the reading of rows raises; a result is whole or an error.
class Executor final : private RowSource {
 public:
  /// Both must outlive it.
  Executor(const Query& query, const Plan& plan);
  /// Once, when the plan is made.
  void Prepare();

  /// The rows of a plain query, in the order of the result.
  FoundRows FindRows();
  /// The values of the result's columns, in the order of the result.
  ValueRows ReadRows();

 private:
  struct CurrentRow {
    RowId id;
    format::RowView row;
  };
  /// What a step needs while it runs; it is not entered again before it is left.
  struct Buffers {
    KeyBounds bounds;
    std::vector<RowId> rows;  // to be put into storage order
  };

  Value Read(ColumnPlace place) const override;
  std::optional<std::string_view> ReadText(ColumnPlace place, std::string& buffer) const override;

  template <typename Visit>
  void Run(const Visit& visit);
  template <typename Visit>
  void RunStep(std::size_t number, const Visit& visit);
  template <typename Visit>
  void Take(std::size_t number, RowId id, const RowRef& row, const BoundExpression* holds,
            const Visit& visit);
  template <typename Visit>
  void RunIndex(std::size_t number, const Visit& visit);
  template <typename Visit>
  void RunScan(std::size_t number, const Visit& visit);
  bool NeedsNoMoreThanIds() const;
  template <typename Visit>
  std::vector<std::size_t> RunToSort(const Visit& visit);
  void AddTo(RowOrder& order);

  ValueRows ReadPlain();
  ValueRows ReadAggregates();
  Value ReadEnd(const OutputColumn& column, const IndexEnd& end) const;
  const Table& TableOf(std::size_t source) const { return *m_query->sources[source].table; }

  const Query* m_query;
  const Plan* m_plan;
  Evaluator m_evaluator;
  std::vector<CurrentRow> m_rows;  // by source
  std::vector<Buffers> m_buffers;  // by step
  std::string m_text;              // of a sort column
};

}  // namespace jet::sql
