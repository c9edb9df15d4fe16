// Seasons: the caches of them, and loading one with its managers.
//
// The loaders show nothing: they raise, and the operation reports the error in its own style. A season whose
// prizes or managers cannot be loaded is not kept: saving it would write back less than is stored. Winnings
// can be missing, because their loader shows its failure itself; they cannot be saved then. A draft can be
// partial, because saving it writes changed picks only.

#include <chrono>
#include <exception>
#include <string>

#include "HLIData/Error.h"
#include "records/ManagerInfo.h"
#include "records/ManagerTmplInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/SeasonInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::Error;
using HLIData::ErrorNumber;
using HLIData::IManagerInfo;
using HLIData::IManagerTmplInfo;
using HLIData::ISeasonInfo;
using HLIData::KeyedCollection;

namespace {

const std::string kLoading = "Error in loading season info.";

std::shared_ptr<SeasonInfo> ReadSeason(jet::Recordset& row) {
  auto season = std::make_shared<SeasonInfo>();
  season->ID(Rows::LeadingInt32(row, Schema::Season::kID));
  season->Year(Rows::LeadingInt32(row, Schema::Season::kYear));
  season->NoOfManagers(Rows::LeadingInt32(row, Schema::Season::kNoOfPlayers));
  season->NoOfRounds(Rows::LeadingInt32(row, Schema::Season::kNoOfRounds));
  season->MoneyContribution(Rows::LeadingInt32(row, Schema::Season::kMoneyContribution));
  season->NoOfRegularWeeks(Rows::LeadingInt32(row, Schema::Season::kNoOfRegularWeeks));
  season->TotalNoOfWeeks(Rows::LeadingInt32(row, Schema::Season::kTotalNoOfWeeks));
  season->IsRankingLocked(Rows::Boolean(row, Schema::Season::kIsRankingLocked));
  season->IsSeasonLocked(Rows::Boolean(row, Schema::Season::kIsSeasonLocked));
  season->IsDraftLocked(Rows::Boolean(row, Schema::Season::kIsDraftLocked));
  season->HasSeasonStarted(Rows::Boolean(row, Schema::Season::kHasSeasonStarted));
  return season;
}

}  // namespace

std::shared_ptr<ISeasonInfo> DataService::GetCurrentSeasonInfo() {
  using Result = std::shared_ptr<ISeasonInfo>;
  return Trap<Result>(kLoading, [this](Result& result) { result = SeasonByID(m_currentSeasonID); });
}

std::shared_ptr<KeyedCollection<ISeasonInfo>> DataService::GetAllSeasons() {
  using Result = std::shared_ptr<KeyedCollection<ISeasonInfo>>;
  return Trap<Result>(kLoading, [this](Result& result) {
    if (!m_caches.areAllSeasonsLoaded) {
      std::string problems;
      bool isComplete = true;
      Rows::ForEach(Database(), "select id from [season info]", [&](jet::Recordset& row) {
        const std::int32_t id = Rows::LeadingInt32(row, Schema::Season::kID);
        try {
          SeasonByID(id);
        } catch (const ShownError&) {
          isComplete = false;
        } catch (const std::exception& error) {
          isComplete = false;
          problems += HLConsts::kLineBreak + ("Season " + std::to_string(id) + ": ") + error.what();
        }
      });
      m_caches.areAllSeasonsLoaded = isComplete;
      if (!problems.empty()) m_host->ShowMessage(kLoading + problems, HLConsts::kServiceTitle);
    }
    result = m_caches.seasonsByID;
  });
}

bool DataService::DiscardCurrentSeasonInfo() {
  if (const auto season = FindCached(m_caches.seasonsByID, m_currentSeasonID)) m_caches.Forget(season);
  return true;
}

std::shared_ptr<SeasonInfo> DataService::SeasonByID(std::int32_t seasonID) {
  if (const auto known = FindCached(m_caches.seasonsByID, seasonID)) {
    return OwnRecord<SeasonInfo>(known, "A season");
  }
  if (seasonID != 0) return LoadSeason(seasonID, 0);

  CurrentSeasonYear(static_cast<int>(m_host->Today().year()));
  if (m_currentSeasonID == 0) return {};  // there is no season of this year, and none could be made
  return SeasonByID(m_currentSeasonID);
}

std::shared_ptr<SeasonInfo> DataService::LoadSeason(std::int32_t seasonID, std::int32_t seasonYear) {
  if (seasonID < 1 && seasonYear < 1) return {};
  const auto rows = Database().OpenRecordset(
      seasonID < 1 ? "select * from [season info] s where s.[season year] = " + std::to_string(seasonYear)
                   : "select * from [season info] s where s.id = " + std::to_string(seasonID));
  if (rows->Eof()) return {};
  const auto season = ReadSeason(*rows);
  rows->Close();
  // Of a season of a year that is known by its identifier alone, the object that everybody has stays the one.
  if (const auto known = FindCached(m_caches.seasonsByID, season->ID())) {
    return OwnRecord<SeasonInfo>(known, "A season");
  }

  m_caches.Keep(season);
  try {
    season->Prizes(LoadMoneyDistribution(season->ID()));
    season->Managers(LoadManagers(season->ID()));
    season->Winnings(LoadWinnings(season->ID()));
    ReloadDrafts(*season);
  } catch (...) {
    m_caches.Forget(season);
    throw;
  }
  season->CurrentPick(0);
  return season;
}

std::shared_ptr<KeyedCollection<IManagerInfo>> DataService::LoadManagers(std::int32_t seasonID) {
  auto managers = std::make_shared<KeyedCollection<IManagerInfo>>();
  const std::string statement =
      "select * from [playing info] p where p.[season id] = " + std::to_string(seasonID) +
      " order by ranking";
  Rows::ForEach(Database(), statement, [&](jet::Recordset& row) {
    const std::int32_t managerID = Rows::LeadingInt32(row, Schema::Playing::kManagerID);
    const auto manager = std::make_shared<ManagerInfo>();
    manager->ManagerTmpl(ManagerTmplByID(managerID));
    manager->Rank(Rows::LeadingInt32(row, Schema::Playing::kRanking));
    manager->IsFeePaid(Rows::Boolean(row, Schema::Playing::kFeePaid));
    const std::string key = RecordKey(managerID);
    if (managers->Find(key)) {
      throw Error(ErrorNumber::DuplicateKey, "Manager " + std::to_string(managerID) +
                                                 " stands twice in [playing info] of season " +
                                                 std::to_string(seasonID) + ".");
    }
    managers->Add(manager, key);
  });
  return managers;
}

std::shared_ptr<IManagerTmplInfo> DataService::ManagerTmplByID(std::int32_t managerID) {
  if (managerID == 0) return {};
  if (const auto known = FindCached(m_caches.managers, managerID)) return known;
  const auto rows =
      Database().OpenRecordset("select * from [manager info] where [id] = " + std::to_string(managerID));
  if (rows->Eof()) return {};
  const auto manager = std::make_shared<ManagerTmplInfo>();
  manager->ID(managerID);
  manager->FirstName(Rows::Text(*rows, Schema::Manager::kFirstName));
  manager->LastName(Rows::Text(*rows, Schema::Manager::kLastName));
  rows->Close();
  if (!m_caches.managers) m_caches.managers = std::make_shared<KeyedCollection<IManagerTmplInfo>>();
  m_caches.managers->Add(manager, RecordKey(managerID));
  return manager;
}

}  // namespace HLDataSrvc
