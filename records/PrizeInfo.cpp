#include "records/PrizeInfo.h"

#include "records/References.h"

namespace HLDataSrvc {

const HLIData::IPrizeTmplInfo& PrizeInfo::Master() const {
  return Required(m_prizeTmpl, "The prize of the season has no master record.");
}

}  // namespace HLDataSrvc
