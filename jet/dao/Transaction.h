#pragma once

#include <cstddef>
#include <memory>

namespace jet {

class Database;
class DatabaseCore;

/// The scope of one transaction of a database: `Commit` commits it, the destructor rolls it back otherwise,
/// with any inner transaction that is still open.
///
/// Does not keep the database open. Closing the database rolls the transaction back.
class Transaction {
 public:
  /// Raises what Database::BeginTrans raises.
  explicit Transaction(Database& database);
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Raises what Database::CommitTrans raises, and then the transaction is rolled back; ObjectClosed if the
  /// database was closed, NoTransaction if it is not the innermost transaction.
  void Commit();

  /// Whether it is one of this database, which has not been closed and opened again since.
  bool IsOf(const Database& database) const;

 private:
  std::shared_ptr<DatabaseCore> m_database;
  std::size_t m_depth;
};

}  // namespace jet
