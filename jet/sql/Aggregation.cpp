#include "jet/sql/Aggregation.h"

#include <limits>

#include "jet/Error.h"
#include "jet/sql/Comparison.h"
#include "jet/sql/Numbers.h"

namespace jet::sql {

void Aggregation::Add(const Value& value) {
  if (value.IsNull()) return;
  ++m_count;
  switch (m_column->aggregate) {
    case Aggregate::Max:
      if (m_count == 1 || CompareValues(value, m_extreme) > 0) m_extreme = value;
      break;
    case Aggregate::Min:
      if (m_count == 1 || CompareValues(value, m_extreme) < 0) m_extreme = value;
      break;
    case Aggregate::Sum:
    case Aggregate::Average:
      m_sum += ToDouble(value);
      if (const auto* money = value.As<Currency>()) {
        using Limits = std::numeric_limits<std::int64_t>;
        const bool tooHigh = money->scaled > 0 && m_money > Limits::max() - money->scaled;
        const bool tooLow = money->scaled < 0 && m_money < Limits::min() - money->scaled;
        m_tooLarge = m_tooLarge || tooHigh || tooLow;
        if (!m_tooLarge) m_money += money->scaled;
      }
      break;
    default:
      break;
  }
}

Value Aggregation::Result() const {
  if (m_column->aggregate == Aggregate::Count) return m_count;
  if (m_count == 0) return {};
  switch (m_column->aggregate) {
    case Aggregate::Sum:
      if (m_column->type != ColumnType::Currency) return m_sum;
      if (m_tooLarge)
        throw Error(ErrorNumber::CannotConvert,
                    "The sum '" + m_column->name + "' is out of the range of money.");
      return Currency{m_money};
    case Aggregate::Average:
      return m_sum / m_count;
    default:
      return m_extreme;
  }
}

}  // namespace jet::sql
