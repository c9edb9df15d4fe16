// Search by name.

#include "service/DataService.h"
#include "service/NotAvailable.h"

namespace HLDataSrvc {

std::shared_ptr<HLIData::KeyedCollection<HLIData::IPickable>> DataService::Search(
    HLIData::SearchType searchType, const std::string&, bool, bool) {
  using Result = std::shared_ptr<HLIData::KeyedCollection<HLIData::IPickable>>;
  switch (searchType) {
    case HLIData::SearchType::PlayersAndTeams:
      return ShowNotAvailable<Result>(*m_host, "Error in searching players/teams.");
    case HLIData::SearchType::Managers:
      return ShowNotAvailable<Result>(*m_host, "Error in searching managers.");
    case HLIData::SearchType::Prizes:
      return ShowNotAvailable<Result>(*m_host, "Error in searching prizes.");
    case HLIData::SearchType::Positions:
      return ShowNotAvailable<Result>(*m_host, "Error in searching positions.");
  }
  return {};
}

}  // namespace HLDataSrvc
