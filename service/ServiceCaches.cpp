#include "service/ServiceCaches.h"

namespace HLDataSrvc {

void ServiceCaches::Clear() {
  seasonsByID.reset();
  seasonsByYear.reset();
  positions.reset();
  teams.reset();
  players.reset();
  managers.reset();
  prizeTmpls.reset();
  prizeTypes.reset();
}

}  // namespace HLDataSrvc
