// Writing seasons: their own row and money, who takes part, the ranking, the two locks, and new seasons.
//
// An error half way leaves what was written until then, also deleted rows that were not added again; a crash
// leaves the rows from before the operation (DataService::Write).

#include <exception>

#include "jet/Error.h"
#include "records/References.h"
#include "records/SeasonInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::IManagerInfo;
using HLIData::IPrizeInfo;
using HLIData::ISeasonInfo;
using HLIData::KeyedCollection;

namespace {

constexpr char kNoSeason[] = "The season is not loaded.";

std::string WhereID(std::int32_t seasonID) {
  return "where id = " + std::to_string(seasonID);
}

std::string SelectOfSeason(const std::string& table, std::int32_t seasonID) {
  return "select * from [" + table + "] where [season id] = " + std::to_string(seasonID);
}

void WriteSeason(jet::Recordset& row, const SeasonInfo& season) {
  row.Fields(Schema::Season::kYear).Value(season.Year());
  row.Fields(Schema::Season::kNoOfPlayers).Value(season.NoOfManagers());
  row.Fields(Schema::Season::kNoOfRounds).Value(season.NoOfRounds());
  row.Fields(Schema::Season::kMoneyContribution).Value(season.MoneyContribution());
  row.Fields(Schema::Season::kNoOfRegularWeeks).Value(season.NoOfRegularWeeks());
  row.Fields(Schema::Season::kTotalNoOfWeeks).Value(season.TotalNoOfWeeks());
  row.Fields(Schema::Season::kIsRankingLocked).Value(season.IsRankingLocked());
  row.Fields(Schema::Season::kIsDraftLocked).Value(season.IsDraftLocked());
  row.Fields(Schema::Season::kIsSeasonLocked).Value(season.IsSeasonLocked());
  row.Fields(Schema::Season::kHasSeasonStarted).Value(season.HasSeasonStarted());
}

/// A rank below 1 is none, and is stored as Null.
void WriteRank(jet::Recordset& row, const IManagerInfo& manager) {
  row.Fields(Schema::Playing::kRanking).Value(manager.Rank() < 1 ? jet::Value() : jet::Value(manager.Rank()));
}

/// Starts to edit the row that a search has found. Raises NoCurrentRecord, naming the manager, if it has not.
void EditRowOf(jet::Recordset& rows, std::int32_t managerID, std::int32_t seasonID) {
  try {
    rows.Edit();
  } catch (const jet::Error& error) {
    if (error.Number() != jet::ErrorNumber::NoCurrentRecord) throw;
    throw jet::Error(error.Number(), "Manager " + std::to_string(managerID) +
                                         " has no row in [playing info] of season " +
                                         std::to_string(seasonID) + ".");
  }
}

/// The managers of a season; a season that there is not has none.
std::shared_ptr<KeyedCollection<IManagerInfo>> ManagersOf(const std::shared_ptr<SeasonInfo>& season) {
  return season ? season->Managers() : nullptr;
}

}  // namespace

bool DataService::SaveCurrentSeasonInfo() {
  const std::int32_t seasonID =
      m_currentSeasonID;  // the rows to write, also when looking up makes another current
  return Trap<bool>("Error in saving season info.", [this, seasonID](bool& result) {
    const auto season = SeasonByID(seasonID);
    Write([&](Writes& writes) {
      const auto rows = writes.Database().OpenRecordset("select * from [season info] " + WhereID(seasonID));
      if (!rows->Eof()) {
        rows->Edit();
        WriteSeason(*rows, Required(season, kNoSeason));
        rows->Update();
      }
      rows->Close();
      // The money of an identifier without a season is replaced too: by nothing.
      ReplaceMoneyDistribution(writes, seasonID, season ? *season : SeasonInfo());
    });
    DiscardCurrentSeasonInfo();
    SeasonByID(seasonID);
    result = true;
  });
}

void DataService::ReplaceMoneyDistribution(Writes& writes, std::int32_t seasonID, const SeasonInfo& season) {
  const auto rows =
      writes.Database().OpenRecordset(SelectOfSeason(Schema::MoneyDistribution::kTable, seasonID));
  Rows::DeleteAll(*rows);
  if (const auto prizes = season.Prizes()) {
    for (const auto& prize : prizes->Items()) {
      rows->AddNew();
      rows->Fields(Schema::MoneyDistribution::kSeasonID).Value(seasonID);
      rows->Fields(Schema::MoneyDistribution::kPrizeID).Value(prize->ID());
      rows->Fields(Schema::MoneyDistribution::kMoney).Value(prize->Amount());
      rows->Update();
    }
  }
  rows->Close();
}

bool DataService::SaveManagersPlaying() {
  const std::int32_t seasonID = m_currentSeasonID;
  std::shared_ptr<SeasonInfo> season;
  if (!FetchSeason(seasonID, "Error in saving playing info.", season)) return false;

  // From here on errors go to the caller, deliberately.
  const auto managers = ManagersOf(season);
  Write([&](Writes& writes) {
    const auto rows = writes.Database().OpenRecordset(SelectOfSeason(Schema::Playing::kTable, seasonID));
    Rows::DeleteAll(*rows);
    if (managers) {
      for (const auto& manager : managers->Items()) {
        rows->AddNew();
        rows->Fields(Schema::Playing::kSeasonID).Value(seasonID);
        rows->Fields(Schema::Playing::kManagerID).Value(manager->ID());
        rows->Fields(Schema::Playing::kFeePaid).Value(manager->IsFeePaid());
        WriteRank(*rows, *manager);
        rows->Update();
      }
    }
    rows->Close();
  });
  const auto loaded = LoadManagers(seasonID);
  Required(season, kNoSeason).Managers(loaded);
  return true;
}

bool DataService::SaveRanking() {
  const Operation operation(*this);
  const std::int32_t seasonID = m_currentSeasonID;
  std::shared_ptr<SeasonInfo> season;
  if (!FetchSeason(seasonID, "Error in saving ranking info.", season)) return false;
  const auto managers = ManagersOf(season);
  if (!managers) return true;

  // From here on errors go to the caller, deliberately; that of a manager without a row among them.
  Write([&](Writes& writes) {
    const auto rows = writes.Database().OpenRecordset(SelectOfSeason(Schema::Playing::kTable, seasonID));
    for (const auto& manager : managers->Items()) {
      rows->FindFirst("[manager id] = " + std::to_string(manager->ID()));
      EditRowOf(*rows, manager->ID(), seasonID);
      WriteRank(*rows, *manager);
      rows->Update();
    }
    rows->Close();
  });
  ReloadDrafts(*season);
  return true;
}

bool DataService::FetchSeason(std::int32_t seasonID, const std::string& sentence,
                              std::shared_ptr<SeasonInfo>& season) {
  return Trap<bool>(sentence, [&](bool& result) {
    season = SeasonByID(seasonID);
    result = true;
  });
}

bool DataService::DisableRanking() {
  return Trap<bool>("Error in disabling ranking.", [this](bool& result) {
    const auto season = SeasonByID(m_currentSeasonID);
    Required(season, kNoSeason).IsRankingLocked(true);
    WriteLock(Schema::Season::kIsRankingLocked);
    result = true;
  });
}

bool DataService::DisableDrafting() {
  return Trap<bool>("Error in disabling drafting.", [this](bool& result) {
    const auto season = SeasonByID(m_currentSeasonID);
    Required(season, kNoSeason).IsDraftLocked(true);
    WriteLock(Schema::Season::kIsDraftLocked);
    result = true;
  });
}

void DataService::WriteLock(const std::string& column) {
  Write([&](Writes& writes) {
    const auto rows = writes.Database().OpenRecordset("select [" + column + "] from [season info] " +
                                                      WhereID(m_currentSeasonID));
    rows->Edit();
    rows->Fields(column).Value(true);
    rows->Update();
    rows->Close();
  });
}

std::shared_ptr<ISeasonInfo> DataService::AddSeason(std::int32_t seasonYear) {
  std::shared_ptr<jet::Recordset> highest;
  try {
    highest = Database().OpenRecordset(Rows::SelectHighestID(Schema::Season::kTable));
  } catch (const std::exception&) {
    return {};  // deliberately neither shown nor raised
  }

  // From here on errors go to the caller, deliberately.
  const Operation operation(*this);
  const std::int32_t newID = Rows::NextID(*highest);
  Write([&](Writes& writes) {
    const auto rows = writes.Database().OpenRecordset("select * from [season info]");
    rows->AddNew();
    rows->Fields(Schema::Season::kID).Value(newID);
    rows->Fields(Schema::Season::kYear).Value(seasonYear);
    rows->Update();
    rows->Close();
  });
  return LoadSeason(0, seasonYear);
}

}  // namespace HLDataSrvc
