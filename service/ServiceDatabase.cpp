#include "HLDataSrvc/ServiceDatabase.h"

#include "HLIData/Error.h"
#include "jet/Error.h"
#include "jet/Schema.h"
#include "jet/dao/Database.h"
#include "jet/dao/Transaction.h"
#include "service/DataService.h"

namespace HLDataSrvc {
namespace {

jet::Database& DatabaseOf(HLIData::IDataService& service) {
  if (auto* own = dynamic_cast<DataService*>(&service)) return own->Database();
  throw HLIData::Error(HLIData::ErrorNumber::TypeMismatch, "The service is not one of this library.");
}

}  // namespace

bool RunInTransaction(HLIData::IDataService& service, const std::function<bool()>& work) {
  jet::Transaction transaction(DatabaseOf(service));
  if (!work()) return false;
  transaction.Commit();
  return true;
}

std::optional<std::size_t> TextColumnLength(HLIData::IDataService& service, const std::string& table,
                                            const std::string& column) {
  try {
    for (const jet::ColumnSpec& spec : DatabaseOf(service).Table(table).columns) {
      if (spec.name == column && spec.type == jet::ColumnType::Text) return spec.length;
    }
  } catch (const jet::Error& error) {
    if (error.Number() != jet::ErrorNumber::UnknownTable) throw;
  }
  return std::nullopt;
}

}  // namespace HLDataSrvc
