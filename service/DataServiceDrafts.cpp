// The draft picks of a season.

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>

#include "HLIData/Error.h"
#include "records/Conversions.h"
#include "records/DraftInfo.h"
#include "records/HLUtils.h"
#include "records/PlayerInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/SeasonInfo.h"
#include "records/TeamInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::Error;
using HLIData::ErrorNumber;
using HLIData::IDraftInfo;
using HLIData::KeyedCollection;
using HLIData::PickType;

namespace {

constexpr char kNoSeason[] = "The current season is not loaded.";

/// One draft with an empty pick for every number from 1 to `noOfPicks`.
std::shared_ptr<KeyedCollection<IDraftInfo>> EmptyDraft(std::int32_t noOfPicks) {
  auto drafts = std::make_shared<KeyedCollection<IDraftInfo>>();
  for (std::int32_t number = 1; number <= noOfPicks; ++number) {
    const auto pick = std::make_shared<DraftInfo>();
    pick->DraftNo(number);
    drafts->Add(pick, HLUtils::MakePickKey(PickType::None, number));
  }
  return drafts;
}

/// Who picked whom, as a row of the draft says; 0: none.
struct PickIDs {
  std::int32_t manager = 0;
  std::int32_t player = 0;
  std::int32_t team = 0;
};

PickIDs ReadIDs(jet::Recordset& row) {
  return {.manager = Rows::LeadingInt32(row, Schema::Draft::kManagerID),
          .player = Rows::LeadingInt32(row, Schema::Draft::kPlayerID),
          .team = Rows::LeadingInt32(row, Schema::Draft::kTeamID)};
}

/// Raises ObjectNotSet for a pick without a manager.
PickIDs IDsOf(const DraftInfo& pick, std::int32_t seasonID) {
  const std::string who = "Pick " + std::to_string(pick.DraftNo()) + " of season " + std::to_string(seasonID);
  PickIDs ids{.manager = Required(pick.Manager(), (who + " has no manager.").c_str()).ID()};
  if (pick.PickType() == PickType::Player)
    ids.player = Required(pick.Player(), (who + " has no player.").c_str()).ID();
  if (pick.PickType() == PickType::Team)
    ids.team = Required(pick.Team(), (who + " has no team.").c_str()).ID();
  return ids;
}

/// What there is none of keeps its stored value, deliberately: a pick that became a team's keeps its player
/// in the row, and is that player's again when it is read.
void WriteIDs(jet::Recordset& row, const PickIDs& ids) {
  if (ids.manager > 0) row.Fields(Schema::Draft::kManagerID).Value(ids.manager);
  if (ids.player > 0) row.Fields(Schema::Draft::kPlayerID).Value(ids.player);
  if (ids.team > 0) row.Fields(Schema::Draft::kTeamID).Value(ids.team);
}

/// The beginning of what is said of a stored pick that cannot be.
std::string StoredPick(std::int32_t number, const SeasonInfo& season) {
  return "Pick " + std::to_string(number) + " of season " + std::to_string(season.ID()) + " in [draft info] ";
}

std::string SelectPicks(std::int32_t seasonID) {
  return "select * from [draft info] where [season id] = " + std::to_string(seasonID);
}

}  // namespace

DataService::LoadedDrafts DataService::LoadDrafts(const SeasonInfo& season) {
  LoadedDrafts loaded;
  const std::int64_t noOfPicks = std::int64_t{season.NoOfManagers()} * season.NoOfRounds();
  const bool isTooLarge = noOfPicks > Schema::Draft::kMostPicks;
  const bool isEmpty = isTooLarge || noOfPicks < 0;
  loaded.drafts = EmptyDraft(isEmpty ? 0 : static_cast<std::int32_t>(noOfPicks));
  if (isTooLarge) {
    loaded.problem = "Season " + std::to_string(season.ID()) + " has " +
                     std::to_string(season.NoOfManagers()) + " x " + std::to_string(season.NoOfRounds()) +
                     " picks, more than the " + std::to_string(Schema::Draft::kMostPicks) +
                     " that a draft may have.";
    return loaded;
  }
  try {
    Rows::ForEach(Database(), SelectPicks(season.ID()) + " order by [draft no]",
                  [&](jet::Recordset& row) { PlaceStoredPick(*loaded.drafts, row, season); });
  } catch (const ShownError&) {
    // The picks placed so far are the draft.
  } catch (const Error& error) {
    loaded.problem = error.what();
  }
  return loaded;
}

void DataService::ReloadDrafts(SeasonInfo& season) {
  LoadedDrafts loaded = LoadDrafts(season);
  season.Drafts(loaded.drafts);
  const bool isNew =
      std::find(m_partialDrafts.begin(), m_partialDrafts.end(), loaded.problem) == m_partialDrafts.end();
  if (!loaded.problem.empty() && isNew) m_partialDrafts.push_back(std::move(loaded.problem));
}

void DataService::PlaceStoredPick(KeyedCollection<IDraftInfo>& drafts, jet::Recordset& row,
                                  const SeasonInfo& season) {
  const std::int32_t number = Rows::LeadingInt32(row, Schema::Draft::kDraftNo);
  const PickIDs ids = ReadIDs(row);
  if (number < 1 || number > drafts.Count()) {
    throw Error(ErrorNumber::BadPosition, StoredPick(number, season) + "lies outside its draft of " +
                                              std::to_string(drafts.Count()) + " picks.");
  }
  const auto manager = FindCached(season.Managers(), ids.manager);
  if (!manager) {
    throw Error(ErrorNumber::UnknownKey, StoredPick(number, season) + "is of manager " +
                                             std::to_string(ids.manager) + ", who does not take part.");
  }
  PickType type = PickType::None;
  std::shared_ptr<PlayerInfo> player;
  std::shared_ptr<TeamInfo> team;
  try {
    if (ids.player >= 1) {
      type = PickType::Player;  // also when there is no such player
      player = PlayerByID(ids.player);
    } else if (ids.team >= 1) {
      type = PickType::Team;
      team = TeamByID(ids.team);
    }
  } catch (const ShownError&) {
    throw;
  } catch (const Error& error) {
    throw Error(error.Number(), StoredPick(number, season) + "cannot be loaded. " + error.what());
  }
  const std::string key = type == PickType::Player ? HLUtils::MakePickKey(type, ids.player)
                          : type == PickType::Team ? HLUtils::MakePickKey(type, ids.team)
                                                   : HLUtils::MakePickKey(type, number);
  const auto pick = OwnRecord<DraftInfo>(drafts.Item(number), "A pick");
  if (const auto other = drafts.Find(key); other && other != pick) {
    throw Error(ErrorNumber::DuplicateKey,
                StoredPick(number, season) + "is the same as pick " + std::to_string(other->DraftNo()) + ".");
  }

  pick->DraftNo(number);
  pick->IsStored(true);
  pick->Manager(manager);
  if (type == PickType::Player) pick->Player(player);
  if (type == PickType::Team) pick->Team(team);
  pick->PickType(type);
  pick->IsChanged(false);
  drafts.Remove(number);
  HLUtils::PutPickBack(drafts, number, pick, key);
}

bool DataService::SaveDrafts() {
  return Trap<bool>("Error in saving drafts.", [this](bool& result) {
    const auto season = SeasonByID(m_currentSeasonID);
    const std::int32_t seasonID = m_currentSeasonID;  // a client's record may change it
    const auto drafts = Required(season, kNoSeason).Drafts();
    Write([&](Writes& writes) {
      for (const auto& item : Required(drafts, "The season has no draft.").Items()) {
        const auto pick = OwnRecord<DraftInfo>(item, "A pick");
        if (!pick->IsChanged()) continue;
        WritePick(writes, seasonID, *pick);
        writes.OnCommit([pick] { pick->IsChanged(false); });
      }
    });
    result = true;
  });
}

void DataService::WritePick(Writes& writes, std::int32_t seasonID, const DraftInfo& pick) {
  const PickIDs ids = IDsOf(pick, seasonID);
  const auto rows = writes.Database().OpenRecordset(SelectPicks(seasonID) +
                                                    " and [draft no] = " + std::to_string(pick.DraftNo()));
  if (rows->Eof()) {
    rows->AddNew();
  } else {
    rows->Edit();
  }
  rows->Fields(Schema::Draft::kSeasonID).Value(seasonID);
  rows->Fields(Schema::Draft::kDraftNo).Value(pick.DraftNo());
  WriteIDs(*rows, ids);
  rows->Update();
  rows->Close();
}

bool DataService::DeleteDrafts() {
  return Trap<bool>("Error in deleting drafts.", [this](bool& result) {
    Write([this](Writes& writes) {
      const auto rows = writes.Database().OpenRecordset(SelectPicks(m_currentSeasonID));
      Rows::DeleteAll(*rows);
      rows->Close();
    });
    const auto season = SeasonByID(m_currentSeasonID);
    ReloadDrafts(Required(season, kNoSeason));
    result = true;
  });
}

}  // namespace HLDataSrvc
