// Adding, changing and deleting master records.

#include "service/DataService.h"
#include "service/NotAvailable.h"

namespace HLDataSrvc {

bool DataService::UpdatePlayer(const std::string&, const std::string&, std::int32_t, std::int32_t, bool,
                               std::int32_t&, std::shared_ptr<HLIData::IPlayerInfo>&,
                               std::string& errMessage) {
  return TellNotAvailable(errMessage);
}

bool DataService::UpdatePosition(const std::string&, const std::string&, std::int32_t&,
                                 std::shared_ptr<HLIData::IPositionInfo>&, std::string& errMessage) {
  return TellNotAvailable(errMessage);
}

bool DataService::UpdateManager(const std::string&, const std::string&, std::int32_t&,
                                std::shared_ptr<HLIData::IManagerTmplInfo>&, std::string& errMessage) {
  return TellNotAvailable(errMessage);
}

bool DataService::UpdatePrize(const std::string&, std::int32_t, std::int32_t&,
                              std::shared_ptr<HLIData::IPrizeTmplInfo>&, std::string& errMessage) {
  return TellNotAvailable(errMessage);
}

bool DataService::Delete(HLIData::DeleteType, std::int32_t, std::string& errorMessage) {
  return TellNotAvailable(errorMessage, "Error in deleting record.");
}

}  // namespace HLDataSrvc
