// Deleting master records.

#include <exception>

#include "records/RecordKey.h"
#include "records/References.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::DeleteType;

namespace {

constexpr char kIsReferred[] =
    "The record cannot be deleted because it is included in other related records.";

/// Empty for a kind without a name; no statement on it can be run.
std::string TableOf(DeleteType deleteType) {
  switch (deleteType) {
    case DeleteType::Player:
      return Schema::Player::kTable;
    case DeleteType::Manager:
      return Schema::Manager::kTable;
    case DeleteType::Prize:
      return Schema::Prize::kTable;
    case DeleteType::Position:
      return Schema::Position::kTable;
  }
  return {};
}

template <typename T>
void Remove(const ServiceCaches::Cache<T>& cache, std::int32_t id) {
  Required(cache, "The records are not loaded.").Remove(RecordKey(id));
}

}  // namespace

bool DataService::Delete(DeleteType deleteType, std::int32_t id, std::string& errorMessage) {
  const Operation operation(*this);
  if (id == 0) {
    errorMessage = "ID is required.";
    return false;
  }
  std::shared_ptr<jet::Recordset> rows;
  bool isFound = false;
  const bool isOpen = ReportFailure(errorMessage, "Error in deleting record.", [&] {
    rows = Database().OpenRecordset("select [id] from [" + TableOf(deleteType) +
                                    "] where [id] = " + std::to_string(id));
    isFound = !rows->Eof();
    return true;
  });
  if (!isOpen) return false;

  if (!isFound) {
    errorMessage = "Record not found.";
    return false;
  }
  bool isDeleted = false;
  try {
    Write([&](Writes& writes) {
      writes.Database();
      rows->Delete();
    });
    isDeleted = true;
  } catch (const std::exception&) {
    errorMessage = kIsReferred;  // whatever it was
  }

  // From here on errors go to the caller, deliberately: that of a record which is not cached too, though its
  // row is gone.
  rows->Close();
  if (isDeleted) RemoveFromCache(deleteType, id);
  return isDeleted;
}

void DataService::RemoveFromCache(DeleteType deleteType, std::int32_t id) {
  switch (deleteType) {
    case DeleteType::Player:
      return Remove(m_caches.players, id);
    case DeleteType::Manager:
      return Remove(m_caches.managers, id);
    case DeleteType::Prize:
      return Remove(m_caches.prizeTmpls, id);
    case DeleteType::Position:
      return Remove(m_caches.positions, id);
  }
}

}  // namespace HLDataSrvc
