// The prizes won in a season.

#include <exception>
#include <set>

#include "records/Conversions.h"
#include "records/References.h"
#include "records/SeasonInfo.h"
#include "records/WinningInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::IWinningInfo;
using HLIData::KeyedCollection;
using HLIData::WinningAction;

namespace {

constexpr char kNoSeason[] = "The current season is not loaded.";
constexpr char kNoWinnings[] = "The winnings of the season are not loaded.";

/// The identifiers of the winnings that one save adds: the table's maximum is read for the first of them
/// alone.
class NewWinningIDs {
 public:
  /// Goes on to the next identifier. False, and nothing said, when it cannot be found.
  bool Next(jet::Database& database) {
    try {
      if (m_hasBase) {
        m_id = Conversions::CheckedAdd(m_id, 1);
      } else {
        m_id = Rows::NextID(*database.OpenRecordset(Rows::SelectHighestID(Schema::Winning::kTable)));
        m_hasBase = true;
      }
      return true;
    } catch (const std::exception&) {
      return false;
    }
  }
  std::int32_t ID() const { return m_id; }

 private:
  bool m_hasBase = false;
  std::int32_t m_id = 0;
};

void WriteNew(jet::Recordset& rows, const WinningInfo& winning, std::int32_t id, std::int32_t seasonID) {
  rows.AddNew();
  rows.Fields(Schema::Winning::kID).Value(id);
  rows.Fields(Schema::Winning::kSeasonID).Value(seasonID);
  rows.Fields(Schema::Winning::kPrizeID).Value(winning.PrizeID());
  if (winning.Week() > 0) rows.Fields(Schema::Winning::kWeek).Value(winning.Week());
  rows.Fields(Schema::Winning::kManagerID).Value(winning.ManagerID());
  rows.Update();
}

void DeleteRow(jet::Database& database, std::int32_t id) {
  const auto rows = database.OpenRecordset("select * from [winning info] where [id] = " + std::to_string(id));
  if (!rows->Eof()) rows->Delete();
  rows->Close();
}

}  // namespace

std::shared_ptr<KeyedCollection<IWinningInfo>> DataService::LoadWinnings(std::int32_t seasonID) {
  using Result = std::shared_ptr<KeyedCollection<IWinningInfo>>;
  return Trap<Result>("Error in loading winnings.", [this, seasonID](Result& result) {
    const auto winnings = std::make_shared<KeyedCollection<IWinningInfo>>();
    const std::string statement =
        "select * from [winning info] where [season id] = " + std::to_string(seasonID);
    Rows::ForEach(Database(), statement, [&](jet::Recordset& row) {
      const auto winning = std::make_shared<WinningInfo>();
      winning->SeasonID(seasonID);
      winning->ID(Rows::WholeInt32(row, Schema::Winning::kID));
      winning->PrizeID(Rows::Text(row, Schema::Winning::kPrizeID));
      winning->ManagerID(Rows::Text(row, Schema::Winning::kManagerID));
      winning->Week(Rows::LeadingInt32(row, Schema::Winning::kWeek));
      winning->IsSaved(true);
      winning->IsDirty(false);
      winnings->Add(winning, winning->MakeKey(0));
    });
    result = winnings;
  });
}

bool DataService::AddWinning(std::shared_ptr<IWinningInfo>& oNewWin) {
  const Operation operation(*this);
  try {
    m_newWinnings = Conversions::CheckedAdd(m_newWinnings, 1);
    const auto winning = std::make_shared<WinningInfo>();
    oNewWin = winning;
    const std::string key = winning->MakeKey(m_newWinnings);
    const auto season = SeasonByID(m_currentSeasonID);
    Required(Required(season, kNoSeason).Winnings(), kNoWinnings).Add(winning, key);
    return true;
  } catch (const std::exception&) {
    return false;  // nothing is shown
  }
}

bool DataService::SaveWinnings() {
  return Trap<bool>("Error in saving winnings.", [this](bool& result) {
    const auto season = SeasonByID(m_currentSeasonID);
    const std::int32_t seasonID = m_currentSeasonID;  // a client's record may change it
    const auto winnings = Required(season, kNoSeason).Winnings();
    Required(winnings, kNoWinnings);
    Write([&](Writes& writes) { WriteWinnings(writes, seasonID, winnings); });
    result = true;
  });
}

void DataService::WriteWinnings(Writes& writes, std::int32_t seasonID,
                                const std::shared_ptr<KeyedCollection<IWinningInfo>>& winnings) {
  NewWinningIDs ids;
  std::shared_ptr<jet::Recordset> additions;  // opened for the first new winning, for all of them
  std::set<WinningInfo*> added;               // one winning may stand under several keys
  for (const auto& item : winnings->Items()) {
    const auto winning = OwnRecord<WinningInfo>(item, "A winning");
    if (!winning->IsDirty()) continue;
    const auto keepClean = [winning] { winning->IsDirty(false); };
    switch (winning->Action()) {
      case WinningAction::Add: {
        if (!added.insert(winning.get()).second) break;
        // A winning that gets no identifier is dropped without a message, deliberately. A saved
        // winning that has changed is added again.
        if (!ids.Next(writes.Database())) {
          writes.OnCommit(keepClean);
          break;
        }
        if (!additions) {
          additions = writes.Database().OpenRecordset("select * from [winning info] where [season id] = " +
                                                      std::to_string(seasonID));
        }
        WriteNew(*additions, *winning, ids.ID(), seasonID);
        writes.OnCommit([winning, id = ids.ID()] {
          winning->ID(id);
          winning->IsSaved(true);
          winning->IsDirty(false);
        });
        break;
      }
      case WinningAction::Delete:
        if (winning->IsSaved()) DeleteRow(writes.Database(), winning->ID());
        winnings->Item(winning->Key());  // raises now, rather than after the commit
        writes.OnCommit([winnings, winning] { winnings->Remove(winning->Key()); });
        break;
      default:
        writes.OnCommit(keepClean);  // changes of a stored winning are never written
    }
  }
  if (additions) additions->Close();
}

}  // namespace HLDataSrvc
