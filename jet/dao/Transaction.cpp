#include "jet/dao/Transaction.h"

#include "jet/Error.h"
#include "jet/dao/Database.h"
#include "jet/dao/DatabaseCore.h"

namespace jet {

Transaction::Transaction(Database& database) : m_database(database.m_core) {
  m_database->BeginTrans();
  m_depth = m_database->TransactionDepth();
}

Transaction::~Transaction() {
  try {
    if (m_depth != 0) m_database->RollbackFrom(m_depth);
  } catch (...) {
    // A destructor must not throw. If the schema cannot be reloaded, the database is closed.
  }
}

bool Transaction::IsOf(const Database& database) const {
  return database.m_core == m_database;
}

void Transaction::Commit() {
  if (m_database->IsOpen() && m_database->TransactionDepth() != m_depth) {
    throw Error(ErrorNumber::NoTransaction,
                "The transaction of '" + m_database->Name() + "' is not the innermost one that is open.");
  }
  m_database->CommitTrans();
  m_depth = 0;
}

}  // namespace jet
