#pragma once

#include <cstdint>
#include <memory>

#include "HLIData/IManagerTmplInfo.h"
#include "HLIData/IPlayerInfo.h"
#include "HLIData/IPositionInfo.h"
#include "HLIData/IPrizeTmplInfo.h"
#include "HLIData/IPrizeTypeInfo.h"
#include "HLIData/ISeasonInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLIData/KeyedCollection.h"
#include "records/RecordKey.h"

namespace HLDataSrvc {

/// The records that the service has loaded, each under RecordKey of its identifier. An empty reference is a
/// cache that has not been loaded; the operation that needs it makes it.
///
/// The collections are typed by the interfaces that clients see, because the very collection that is the
/// cache is what they are handed. All records in it are made by the service; where it needs more
/// than the interface shows, it casts down.
struct ServiceCaches {
  template <typename T>
  using Cache = std::shared_ptr<HLIData::KeyedCollection<T>>;

  Cache<HLIData::ISeasonInfo> seasonsByID;
  Cache<HLIData::ISeasonInfo> seasonsByYear;  ///< the same objects, under RecordKey of their year
  Cache<HLIData::IPositionInfo> positions;
  Cache<HLIData::ITeamInfo> teams;
  Cache<HLIData::IPlayerInfo> players;
  Cache<HLIData::IManagerTmplInfo> managers;
  Cache<HLIData::IPrizeTmplInfo> prizeTmpls;
  Cache<HLIData::IPrizeTypeInfo> prizeTypes;
  bool areAllSeasonsLoaded = false;  ///< seasonsByID was filled with every season there is

  /// Puts a season into both collections of seasons. Of several seasons of one year the first stays under it.
  void Keep(const std::shared_ptr<HLIData::ISeasonInfo>& season);
  /// Takes a season out of both, also when its year was changed since.
  void Forget(const std::shared_ptr<HLIData::ISeasonInfo>& season);
  /// Forgets all records. Deliberately leaves `areAllSeasonsLoaded` as it is: seasons are not listed again
  /// afterwards.
  void Clear();
};

/// The record under RecordKey of a number, or an empty reference when the cache has no such record or is not
/// loaded.
template <typename T>
std::shared_ptr<T> FindCached(const ServiceCaches::Cache<T>& cache, std::int32_t number) {
  return cache ? cache->Find(RecordKey(number)) : nullptr;
}

}  // namespace HLDataSrvc
