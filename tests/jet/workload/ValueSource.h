#pragma once

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "jet/TableSpec.h"
#include "jet/Value.h"

namespace jet::test {

/// Random values of every column type, all of which the column takes.
class ValueSource {
 public:
  explicit ValueSource(unsigned seed) : m_random(seed) {}

  /// A whole number from `low` to `high`, both included.
  std::int64_t Number(std::int64_t low, std::int64_t high);
  bool Chance(double probability) { return std::bernoulli_distribution(probability)(m_random); }
  std::size_t Below(std::size_t count) {
    return static_cast<std::size_t>(Number(0, static_cast<std::int64_t>(count) - 1));
  }

  /// A value for a column, never Null. `isKey`: such that two texts are equal only if their bytes are.
  Value Make(const ColumnSpec& column, bool isKey);

 private:
  std::string Text(std::size_t units, bool isKey);
  std::size_t LongLength();
  Bytes Random(std::size_t count);

  std::mt19937_64 m_random;
};

}  // namespace jet::test
