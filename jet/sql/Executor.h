#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "jet/sql/Evaluator.h"
#include "jet/sql/Plan.h"
#include "jet/table/Table.h"

namespace jet::sql {

/// Rows of values, one behind the other.
struct ValueRows {
  std::size_t width = 0;
  std::vector<Value> values;

  std::size_t Count() const { return width == 0 ? 0 : values.size() / width; }
  const Value& At(std::size_t row, std::size_t column) const { return values[row * width + column]; }
};

/// Runs a plan. Raises what the reading of rows raises; a result is whole or an error.
class Executor final : private RowSource {
 public:
  /// Both must outlive it.
  Executor(const Query& query, const Plan& plan);

  /// The rows of a plain query, in the order of the result.
  std::vector<RowId> FindRows();
  /// The values of the result's columns, in the order of the result.
  ValueRows ReadRows();

 private:
  struct CurrentRow {
    RowId id;
    const RowRef* row = nullptr;
  };

  Value Read(ColumnPlace place) const override;
  bool ReadText(ColumnPlace place, std::string& into) const override;

  template <typename Visit>
  void Run(const Visit& visit);
  template <typename Visit>
  void RunStep(std::size_t number, const Visit& visit);
  template <typename Visit>
  void Take(std::size_t number, RowId id, const RowRef& row, const Visit& visit);
  template <typename Visit>
  void RunIndex(std::size_t number, KeyBytes lower, KeyBytes upper, const Visit& visit);
  enum class Lookup { Range, NoRow, Scan };
  Lookup FindRange(const Step& step, KeyBytes& lower, KeyBytes& upper);

  ValueRows ReadPlain();
  ValueRows ReadAggregates();
  Value ReadEnd(const OutputColumn& column, const IndexEnd& end) const;
  const Table& TableOf(std::size_t source) const { return *m_query->sources[source].table; }

  const Query* m_query;
  const Plan* m_plan;
  Evaluator m_evaluator;
  std::vector<CurrentRow> m_rows;             // by source
  std::vector<std::vector<RowId>> m_buffers;  // by step: rows to be put into storage order
};

}  // namespace jet::sql
