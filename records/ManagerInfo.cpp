#include "records/ManagerInfo.h"

#include "records/References.h"

namespace HLDataSrvc {

const HLIData::IManagerTmplInfo& ManagerInfo::Master() const {
  return Required(m_managerTmpl, "The manager of the season has no master record.");
}

}  // namespace HLDataSrvc
