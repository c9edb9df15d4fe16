#pragma once

#include <cstdint>
#include <string>

#include "records/HLConsts.h"

namespace HLDataSrvc {

/// The key under which a record is held in collections: "K" and the plain decimal text of its identifier
/// (K17). Seasons stand under that of their year as well (K2005).
inline std::string RecordKey(std::int32_t id) {
  return HLConsts::kRecordKeyPrefix + std::to_string(id);
}

}  // namespace HLDataSrvc
