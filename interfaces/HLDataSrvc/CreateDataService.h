#pragma once

#include <memory>

#include "HLDataSrvc/Export.h"
#include "HLDataSrvc/Host.h"
#include "HLIData/IDataService.h"

namespace HLDataSrvc {

/// Makes a data service; the only way to get one. It opens nothing before `Initialize`. Without a host it
/// uses SystemHost. Releasing the last reference closes its database.
HLDATASRVC_API std::shared_ptr<HLIData::IDataService> CreateDataService(std::shared_ptr<Host> host = {});

}  // namespace HLDataSrvc
