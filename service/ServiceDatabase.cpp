#include "HLDataSrvc/ServiceDatabase.h"

#include "HLIData/Error.h"
#include "jet/Error.h"
#include "jet/TableSpec.h"
#include "jet/dao/Database.h"
#include "jet/dao/Transaction.h"
#include "records/PlayerInfo.h"
#include "service/DataService.h"
#include "service/Rows.h"

namespace HLDataSrvc {
namespace {

DataService& Own(HLIData::IDataService& service) {
  if (auto* own = dynamic_cast<DataService*>(&service)) return *own;
  throw HLIData::Error(HLIData::ErrorNumber::TypeMismatch, "The service is not one of this library.");
}

jet::Database& DatabaseOf(HLIData::IDataService& service) {
  return Own(service).Database();
}

/// Hands every row of a statement to `change`, as one transaction; how many there are.
template <typename Change>
std::size_t ChangeRows(HLIData::IDataService& service, const std::string& statement, const Change& change) {
  jet::Database& database = DatabaseOf(service);
  jet::Transaction transaction(database);
  std::size_t count = 0;
  Rows::ForEach(database, statement, [&](jet::Recordset& row) {
    change(row);
    ++count;
  });
  transaction.Commit();
  return count;
}

}  // namespace

bool RunInTransaction(HLIData::IDataService& service, const std::function<bool()>& work) {
  const auto open = Own(service).ClientTransaction();
  jet::Transaction transaction(DatabaseOf(service));
  if (!work()) return false;
  transaction.Commit();
  return true;
}

std::exception_ptr OpeningError(HLIData::IDataService& service) {
  return Own(service).OpeningError();
}

void CheckCanChange(HLIData::IDataService& service) {
  DatabaseOf(service).CheckCanChange();
}

std::shared_ptr<HLIData::IDataService> RenewService(HLIData::IDataService& service) {
  return Own(service).Renewed();
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

std::shared_ptr<HLIData::IPlayerInfo> FindPlayer(HLIData::IDataService& service, std::int32_t id) {
  DatabaseOf(service);
  return Own(service).PlayerByID(id);
}

std::vector<TextRow> SelectRows(HLIData::IDataService& service, const std::string& statement) {
  std::vector<TextRow> rows;
  Rows::ForEach(DatabaseOf(service), statement, [&](jet::Recordset& row) {
    TextRow& texts = rows.emplace_back();
    for (std::size_t i = 0; i < row.FieldCount(); ++i) {
      const jet::Value value = row.Fields(i).Value();
      texts.push_back(value.IsNull() ? std::nullopt : std::optional(value.ToText()));
    }
  });
  return rows;
}

std::size_t EditRows(HLIData::IDataService& service, const std::string& statement,
                     const std::vector<std::pair<std::string, std::optional<std::string>>>& values) {
  return ChangeRows(service, statement, [&](jet::Recordset& row) {
    row.Edit();
    for (const auto& [column, value] : values)
      row.Fields(column).Value(value ? jet::Value(*value) : jet::Value());
    row.Update();
  });
}

std::size_t DeleteRows(HLIData::IDataService& service, const std::string& statement) {
  return ChangeRows(service, statement, [](jet::Recordset& row) { row.Delete(); });
}

}  // namespace HLDataSrvc
