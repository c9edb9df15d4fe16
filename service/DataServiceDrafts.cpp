// The draft picks of a season.

#include "HLIData/Error.h"
#include "records/Conversions.h"
#include "records/DraftInfo.h"
#include "records/Failures.h"
#include "records/HLUtils.h"
#include "records/PlayerInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/SeasonInfo.h"
#include "records/TeamInfo.h"
#include "service/DataService.h"
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

/// Who picked whom, as a row of the draft says; 0: nobody.
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
PickIDs IDsOf(const DraftInfo& pick) {
  PickIDs ids{.manager = Required(pick.Manager(), "The pick has no manager.").ID()};
  if (pick.PickType() == PickType::Player)
    ids.player = Required(pick.Player(), "The pick has no player.").ID();
  if (pick.PickType() == PickType::Team) ids.team = Required(pick.Team(), "The pick has no team.").ID();
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

std::shared_ptr<KeyedCollection<IDraftInfo>> DataService::LoadDrafts(const SeasonInfo& season) {
  auto drafts = EmptyDraft(Conversions::CheckedMultiply(season.NoOfManagers(), season.NoOfRounds()));
  Rows::ForEach(Database(), SelectPicks(season.ID()) + " order by [draft no]",
                [&](jet::Recordset& row) { PlaceStoredPick(*drafts, row, season); });
  return drafts;
}

void DataService::PlaceStoredPick(KeyedCollection<IDraftInfo>& drafts, jet::Recordset& row,
                                  const SeasonInfo& season) {
  const std::int32_t number = Rows::LeadingInt32(row, Schema::Draft::kDraftNo);
  const PickIDs ids = ReadIDs(row);
  if (number < 1 || number > drafts.Count()) {
    throw Error(ErrorNumber::BadPosition, StoredPick(number, season) + "lies outside its draft of " +
                                              std::to_string(drafts.Count()) + " picks.");
  }
  const auto pick = OwnRecord<DraftInfo>(drafts.Item(number), "A pick");
  pick->DraftNo(number);
  pick->IsStored(true);
  pick->Manager(FindCached(season.Managers(), ids.manager));
  if (!pick->Manager()) {
    throw Error(ErrorNumber::UnknownKey, StoredPick(number, season) + "is of manager " +
                                             std::to_string(ids.manager) + ", who does not take part.");
  }

  std::string key = HLUtils::MakePickKey(PickType::None, number);
  pick->PickType(PickType::None);
  if (ids.player >= 1) {
    pick->Player(PlayerByID(ids.player));
    pick->PickType(PickType::Player);  // also when there is no such player
    key = HLUtils::MakePickKey(PickType::Player, ids.player);
  } else if (ids.team >= 1) {
    pick->Team(TeamByID(ids.team));
    pick->PickType(PickType::Team);
    key = HLUtils::MakePickKey(PickType::Team, ids.team);
  }
  pick->IsChanged(false);
  drafts.Remove(number);
  if (const auto other = drafts.Find(key)) {
    throw Error(ErrorNumber::DuplicateKey,
                StoredPick(number, season) + "is the same as pick " + std::to_string(other->DraftNo()) + ".");
  }
  HLUtils::PutPickBack(drafts, number, pick, key);
}

bool DataService::SaveDrafts() {
  return ShowFailure<bool>(*m_host, "Error in saving drafts.", [this](bool& result) {
    const auto season = SeasonByID(m_currentSeasonID);
    const auto drafts = Required(season, kNoSeason).Drafts();
    Write([&](Writes& writes) {
      for (const auto& item : Required(drafts, "The season has no draft.").Items()) {
        const auto pick = OwnRecord<DraftInfo>(item, "A pick");
        if (!pick->IsChanged()) continue;
        WritePick(writes, *pick);
        writes.OnCommit([pick] { pick->IsChanged(false); });
      }
    });
    result = true;
  });
}

void DataService::WritePick(Writes& writes, const DraftInfo& pick) {
  const PickIDs ids = IDsOf(pick);
  const auto rows = writes.Database().OpenRecordset(SelectPicks(m_currentSeasonID) +
                                                    " and [draft no] = " + std::to_string(pick.DraftNo()));
  if (rows->Eof()) {
    rows->AddNew();
  } else {
    rows->Edit();
  }
  rows->Fields(Schema::Draft::kSeasonID).Value(m_currentSeasonID);
  rows->Fields(Schema::Draft::kDraftNo).Value(pick.DraftNo());
  WriteIDs(*rows, ids);
  rows->Update();
  rows->Close();
}

bool DataService::DeleteDrafts() {
  return ShowFailure<bool>(*m_host, "Error in deleting drafts.", [this](bool& result) {
    Write([this](Writes& writes) {
      const auto rows = writes.Database().OpenRecordset(SelectPicks(m_currentSeasonID));
      Rows::DeleteAll(*rows);
      rows->Close();
    });
    const auto season = SeasonByID(m_currentSeasonID);
    Required(season, kNoSeason).Drafts(LoadDrafts(*season));
    result = true;
  });
}

}  // namespace HLDataSrvc
