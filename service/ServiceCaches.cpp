#include "service/ServiceCaches.h"

namespace HLDataSrvc {
namespace {

using Seasons = ServiceCaches::Cache<HLIData::ISeasonInfo>;

/// Takes an object out of a collection, under whatever key it stands.
void RemoveSeason(const Seasons& seasons, const std::shared_ptr<HLIData::ISeasonInfo>& season) {
  for (std::int32_t position = seasons ? seasons->Count() : 0; position > 0; --position) {
    if (seasons->Item(position) == season) seasons->Remove(position);
  }
}

}  // namespace

void ServiceCaches::Keep(const std::shared_ptr<HLIData::ISeasonInfo>& season) {
  if (!seasonsByID) seasonsByID = std::make_shared<HLIData::KeyedCollection<HLIData::ISeasonInfo>>();
  if (!seasonsByYear) seasonsByYear = std::make_shared<HLIData::KeyedCollection<HLIData::ISeasonInfo>>();
  seasonsByID->Add(season, RecordKey(season->ID()));
  if (!FindCached(seasonsByYear, season->Year())) seasonsByYear->Add(season, RecordKey(season->Year()));
}

void ServiceCaches::Forget(const std::shared_ptr<HLIData::ISeasonInfo>& season) {
  RemoveSeason(seasonsByID, season);
  RemoveSeason(seasonsByYear, season);
}

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
