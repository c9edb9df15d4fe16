#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "jet/dao/Transaction.h"

namespace HLDataSrvc {

class DataService;

/// The transaction of one operation, which begins with the first write, and the actions that run after its
/// commit.
class Writes {
 public:
  explicit Writes(const DataService& service) : m_service(service) {}
  Writes(const Writes&) = delete;
  Writes& operator=(const Writes&) = delete;

  /// The database, in the transaction. Raises ObjectNotSet when none is open, ObjectClosed if the client has
  /// reopened it since the first write.
  jet::Database& Database();
  /// Runs `action` after the commit. For what says "stored": flags, identifiers, removals from lists.
  void OnCommit(std::function<void()> action);

  /// Commits, and then runs all actions in their order, also after one that raises; the first such error is
  /// raised at the end. If the commit fails no action runs, and nothing is written.
  void Commit();

 private:
  const DataService& m_service;
  std::optional<jet::Transaction> m_transaction;
  std::vector<std::function<void()>> m_onCommit;
};

}  // namespace HLDataSrvc
