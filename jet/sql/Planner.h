#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "jet/sql/Plan.h"

namespace jet::sql {

/// Makes the plan of one query.
class Planner {
 public:
  explicit Planner(const Query& query);

  Plan Make();

 private:
  /// A condition  column <comparison> operand  that an index of the column could serve.
  struct Usable {
    Comparison comparison;
    ColumnPlace place;
    const BoundExpression* operand;  ///< a literal, or a column of another table
  };
  /// One way to find the rows of a table, and how good it is.
  struct Candidate {
    int score = 0;
    std::optional<IndexAccess> access;
  };
  struct Order {
    std::vector<Step> steps;
    std::size_t scans = 0;  ///< inner tables read whole, again and again
    int firstScore = 0;
  };

  void CollectUsable(const BoundExpression& condition);
  bool NeverHolds(const BoundExpression& condition) const;
  Candidate Best(std::size_t source, const std::vector<bool>& bound) const;
  std::optional<Candidate> Try(std::size_t source, std::size_t index, const std::vector<bool>& bound) const;
  const BoundExpression* EqualTo(ColumnPlace place, const std::vector<bool>& bound) const;
  void AddRanges(std::size_t source, IndexAccess& access) const;
  bool HasConstantKey(std::size_t source, const IndexAccess& access) const;
  bool ServesOrder(std::size_t source, std::size_t index, std::size_t equalColumns) const;
  Order StartingWith(std::size_t source) const;
  void AddFilters(std::vector<Step>& steps) const;
  std::vector<IndexEnd> FindEnds() const;
  std::string TextOf(const Plan& plan) const;
  std::string TextOf(const Step& step) const;
  const Table& TableOf(std::size_t source) const { return *m_query->sources[source].table; }

  const Query* m_query;
  std::vector<Usable> m_usable;
};

}  // namespace jet::sql
