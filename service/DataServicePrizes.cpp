// Prize types, prizes and winnings.

#include "service/DataService.h"
#include "service/NotAvailable.h"

namespace HLDataSrvc {

std::shared_ptr<HLIData::KeyedCollection<HLIData::IPrizeTmplInfo>> DataService::GetPrizeTmpls() {
  return ShowNotAvailable<std::shared_ptr<HLIData::KeyedCollection<HLIData::IPrizeTmplInfo>>>(
      *m_host, "Error in loading prizes.");
}

std::shared_ptr<HLIData::KeyedCollection<HLIData::IPrizeTypeInfo>> DataService::GetPrizeTypes() {
  RaiseNotAvailable();  // this operation raises: it has no failure style
}

bool DataService::AddWinning(std::shared_ptr<HLIData::IWinningInfo>&) {
  return ShowNotAvailable<bool>(*m_host, "Error in saving winnings.");
}

bool DataService::SaveWinnings() {
  return ShowNotAvailable<bool>(*m_host, "Error in saving winnings.");
}

}  // namespace HLDataSrvc
