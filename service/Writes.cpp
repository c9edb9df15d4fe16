#include "service/Writes.h"

#include <exception>
#include <utility>

#include "jet/Error.h"
#include "jet/dao/Database.h"
#include "service/DataService.h"

namespace HLDataSrvc {

jet::Database& Writes::Database() {
  jet::Database& database = m_service.Database();
  if (!m_transaction) {
    m_transaction.emplace(database);
  } else if (!m_transaction->IsOf(database)) {  // a client's record reopened it
    throw jet::Error(jet::ErrorNumber::ObjectClosed,
                     "The database '" + database.Name() + "' was reopened while it was being written.");
  }
  return database;
}

void Writes::OnCommit(std::function<void()> action) {
  m_onCommit.push_back(std::move(action));
}

void Writes::Commit() {
  if (m_transaction) m_transaction->Commit();
  std::exception_ptr error;
  for (const auto& action : m_onCommit) {
    try {
      action();
    } catch (...) {
      if (!error) error = std::current_exception();
    }
  }
  if (error) std::rethrow_exception(error);
}

}  // namespace HLDataSrvc
