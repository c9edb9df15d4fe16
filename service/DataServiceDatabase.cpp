// Opening and closing the database file.

#include <utility>

#include "HLIData/Error.h"
#include "jet/dao/Database.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "storage/HLServiceUtils.h"

namespace HLDataSrvc {

bool DataService::Initialize(HLIData::DBType dbType, std::string& errorMessage) {
  return ReportFailure(errorMessage, /*sentence=*/{}, [&] {
    m_databaseKind = dbType;
    if (!OpenDatabase(/*clearCache=*/false, errorMessage)) return false;
    GetSettings();  // shows its own failure; the database stays open
    return true;
  });
}

bool DataService::OpenDatabase(bool clearCache, std::string& errorMessage) {
  if (m_clientTransaction.use_count() > 1) {
    errorMessage = "The database cannot be opened while a transaction is open.";
    return false;
  }
  m_openingError = nullptr;
  if (!HLServiceUtils::OpenDatabaseByKind(*m_host, m_databaseKind, m_database, errorMessage,
                                          &m_openingError)) {
    if (errorMessage.empty()) errorMessage = "Error in opening database.";
    return false;
  }
  if (clearCache) m_caches.Clear();
  return true;
}

std::shared_ptr<DataService> DataService::Renewed() {
  Database();  // raises if none is open
  auto service = std::make_shared<DataService>(m_host);
  service->m_databaseKind = m_databaseKind;
  service->m_database = std::move(m_database);
  if (service->GetSettings()) return service;
  throw HLIData::Error(HLIData::ErrorNumber::ObjectNotSet, "The settings could not be loaded.");
}

void DataService::CloseDatabase() {
  if (!m_database) return;
  m_database->Close();
  m_database.reset();
}

}  // namespace HLDataSrvc
