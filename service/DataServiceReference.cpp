// Positions and teams.

#include "service/DataService.h"
#include "service/NotAvailable.h"

namespace HLDataSrvc {

std::shared_ptr<HLIData::KeyedCollection<HLIData::IPositionInfo>> DataService::GetPlayerPositions() {
  return ShowNotAvailable<std::shared_ptr<HLIData::KeyedCollection<HLIData::IPositionInfo>>>(
      *m_host, "Error in loading positions.");
}

std::shared_ptr<HLIData::KeyedCollection<HLIData::ITeamInfo>> DataService::GetTeams() {
  return ShowNotAvailable<std::shared_ptr<HLIData::KeyedCollection<HLIData::ITeamInfo>>>(
      *m_host, "Error in loading teams.");
}

}  // namespace HLDataSrvc
