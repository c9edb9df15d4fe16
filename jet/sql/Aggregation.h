#pragma once

#include <cstdint>

#include "jet/sql/Query.h"

namespace jet::sql {

/// Works out one aggregate over the values of rows. Nulls do not count.
class Aggregation {
 public:
  explicit Aggregation(const OutputColumn& column) : m_column(&column) {}

  /// Takes the next row's value; for count(*) any value that is not Null.
  void Add(const Value& value);
  /// Null for no values, but for counts. Raises CannotConvert for a sum of money out of range.
  Value Result() const;

 private:
  const OutputColumn* m_column;
  std::int32_t m_count = 0;
  Value m_extreme;
  double m_sum = 0;
  std::int64_t m_money = 0;  // units of 1/10000
  bool m_tooLarge = false;
};

}  // namespace jet::sql
