#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "jet/dao/Database.h"
#include "tests/jet/workload/Model.h"
#include "tests/jet/workload/ValueSource.h"

namespace jet::test {

/// Does random changes to a database and to a model of it, and reports the first disagreement.
class Workload {
 public:
  /// Borrows the model.
  Workload(Model& model, unsigned seed) : m_model(&model), m_values(seed) {}

  /// Adds, edits and deletes `count` times, also with values that must be refused, inside and outside of
  /// transactions, which it commits and rolls back. Empty when database and model always agreed on what is
  /// refused; else what went wrong.
  std::string Run(Database& database, std::size_t count);

  /// How often something was done and how often refused, for people.
  std::string Summary() const;

 private:
  void BeginOrEndTransaction(Database& database);
  std::string Add(Database& database);
  std::string Edit(Database& database);
  std::string Delete(Database& database);
  std::string Apply(Database& database, Recordset& rows, const std::string& name, ModelRow row,
                    const ModelRow* old, const std::vector<bool>& assigned);
  static void ReadAutoNumbers(Database& database, const ModelTable& table, ModelRow& row);
  ModelTable& AnyTable();
  const ModelRow* AnyRow(const ModelTable& table);
  Value ValueFor(const ModelTable& table, std::size_t column);
  void ChooseReferences(const ModelTable& table, ModelRow& row, std::vector<bool>& assigned);
  std::string TryTextThatIsTooLong(Recordset& rows, const ModelTable& table);

  Model* m_model;
  ValueSource m_values;
  std::vector<Model> m_before;  ///< the model when each open transaction began, outermost first
  std::size_t m_adds = 0;
  std::size_t m_edits = 0;
  std::size_t m_deletes = 0;
  std::size_t m_refused = 0;
  std::size_t m_committed = 0;
  std::size_t m_rolledBack = 0;
};

/// What the random numbers of a run start from: of the environment's HALCYRA_TEST_SEED if that is set, else
/// random.
unsigned WorkloadSeed();

}  // namespace jet::test
