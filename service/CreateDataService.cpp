#include "HLDataSrvc/CreateDataService.h"

#include <utility>

#include "service/DataService.h"

namespace HLDataSrvc {

std::shared_ptr<HLIData::IDataService> CreateDataService(std::shared_ptr<Host> host) {
  if (!host) host = SystemHost();
  return std::make_shared<DataService>(std::move(host));
}

}  // namespace HLDataSrvc
