#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace jet::sql {

/// Whole numbers in a statement, in its order.
struct StatementNumbers {
  static constexpr std::size_t kMost = 8;
  std::array<std::int32_t, kMost> values{};
  std::size_t count = 0;
};

/// What statements that differ in whole numbers only have in common, and the numbers of one of them.
///
/// Callers that look rows up by key write a statement for each; all of them have one shape, and what was
/// found out about one serves the others.
struct StatementShape {
  static constexpr char kPlaceholder = '\x01';  ///< begins no token

  std::string text;                                           ///< with a placeholder for each number
  StatementNumbers numbers;                                   ///< further ones are part of the shape
  std::array<std::size_t, StatementNumbers::kMost> places{};  ///< where each number stands in the statement

  /// Takes the shape of a statement. Whole numbers of up to nine digits count, outside of texts, dates and
  /// names; never raises.
  void Take(std::string_view statement);
  /// Takes the numbers of a statement of the shape `shape`, in which no placeholder stands for itself;
  /// false, and nothing is known, when the statement has another shape. Quicker than Take.
  bool TakeIfLike(std::string_view shape, std::string_view statement);
};

}  // namespace jet::sql
