// Adding and changing master records.
//
// The four operations go the same way: report what is missing, and change nothing; then the record
// that everybody shares takes the new values, and a new one enters its cache; then the row is written. The
// order is on purpose: when the row cannot be written, the change stays in memory. Any error ends an
// operation with a bare false.

#include <initializer_list>

#include "records/ManagerTmplInfo.h"
#include "records/PlayerInfo.h"
#include "records/PositionInfo.h"
#include "records/PrizeTmplInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/TeamInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::IManagerTmplInfo;
using HLIData::IPlayerInfo;
using HLIData::IPositionInfo;
using HLIData::IPrizeTmplInfo;
using HLIData::KeyedCollection;

namespace {

constexpr char kNoPositions[] = "The positions are not loaded.";
constexpr char kNoPrizes[] = "The prizes are not loaded.";

/// A value that an operation cannot do without.
struct Need {
  bool isMissing;
  const char* message;
};

/// Tells the first that is missing. Only emptiness counts: a name of blanks passes.
bool HasAll(std::initializer_list<Need> needs, std::string& errMessage) {
  for (const Need& need : needs) {
    if (!need.isMissing) continue;
    errMessage = need.message;
    return false;
  }
  return true;
}

/// The record under an identifier in a cache; raises when it is not there.
template <typename Record, typename Interface>
std::shared_ptr<Record> Known(const ServiceCaches::Cache<Interface>& cache, std::int32_t id,
                              const char* missing) {
  return OwnRecord<Record>(Required(cache, missing).Item(RecordKey(id)), "A record");
}

/// Puts a new record into its cache, which is made if there is none.
template <typename Record, typename Interface>
void Keep(ServiceCaches::Cache<Interface>& cache, const std::shared_ptr<Record>& record) {
  if (!cache) cache = std::make_shared<KeyedCollection<Interface>>();
  cache->Add(record, RecordKey(record->ID()));
}

}  // namespace

std::int32_t DataService::NextID(const std::string& table) {
  return Rows::NextID(*Database().OpenRecordset(Rows::SelectHighestID(table)));
}

void DataService::WriteRecord(const std::string& table, const jet::Value& id, bool isNew,
                              const std::function<void(jet::Recordset& row)>& fill) {
  const std::string select = "select * from [" + table + "]";
  Write([&](Writes& writes) {
    const auto rows =
        writes.Database().OpenRecordset(isNew ? select : select + " where [id] = " + id.ToText());
    if (isNew) {
      rows->AddNew();
      rows->Fields("id").Value(id);
    } else {
      rows->Edit();
    }
    fill(*rows);
    rows->Update();
    rows->Close();
  });
}

bool DataService::UpdatePlayer(const std::string& lastName, const std::string& firstName,
                               std::int32_t position, std::int32_t team, bool isRetired, std::int32_t& id,
                               std::shared_ptr<IPlayerInfo>& oNewPlayer, std::string& errMessage) {
  if (!HasAll({{firstName.empty(), "First name is required."},
               {lastName.empty(), "Last name is required."},
               {position == 0, "Player position is required."},
               {team == 0, "Player team is required."}},
              errMessage)) {
    return false;
  }
  const Operation operation(*this);
  return Succeeds([&] {
    const bool isNew = id == 0;
    if (isNew) id = NextID(Schema::Player::kTable);
    const auto player = isNew ? std::make_shared<PlayerInfo>() : PlayerByID(id);
    Required(player, "There is no such player.").ID(id);
    player->LastName(lastName);
    player->FirstName(firstName);
    player->IsRetired(isRetired);
    if (position > 0) player->Position(Known<PositionInfo>(GetPlayerPositions(), position, kNoPositions));
    if (team > 0) player->Team(TeamByID(team));
    player->IsSaved(true);
    player->IsDirty(false);
    if (isNew) Keep(m_caches.players, player);

    WriteRecord(Schema::Player::kTable, id, isNew, [&](jet::Recordset& row) {
      row.Fields(Schema::Player::kLastName).Value(lastName);
      row.Fields(Schema::Player::kFirstName).Value(firstName);
      row.Fields(Schema::Player::kIsRetired).Value(isRetired);
      if (position > 0) row.Fields(Schema::Player::kPositionID).Value(position);
      if (team > 0) row.Fields(Schema::Player::kTeamID).Value(team);
    });
    oNewPlayer = player;
  });
}

bool DataService::UpdatePosition(const std::string& desc, const std::string& abbr, std::int32_t& id,
                                 std::shared_ptr<IPositionInfo>& oNewPosition, std::string& errMessage) {
  if (!HasAll({{desc.empty(), "Description is required."}, {abbr.empty(), "Abbreviation is required."}},
              errMessage)) {
    return false;
  }
  const Operation operation(*this);
  return Succeeds([&] {
    GetPlayerPositions();
    const bool isNew = id == 0;
    if (isNew) id = NextID(Schema::Position::kTable);
    const auto position =
        isNew ? std::make_shared<PositionInfo>() : Known<PositionInfo>(m_caches.positions, id, kNoPositions);
    position->ID(id);
    position->Desc(desc);
    position->Abbr(abbr);
    if (isNew) Keep(m_caches.positions, position);

    // Positions take their identifier as a text, which the engine converts.
    WriteRecord(Schema::Position::kTable, std::to_string(id), isNew, [&](jet::Recordset& row) {
      row.Fields(Schema::Position::kDesc).Value(desc);
      row.Fields(Schema::Position::kAbbr).Value(abbr);
    });
    oNewPosition = position;
  });
}

bool DataService::UpdateManager(const std::string& lastName, const std::string& firstName, std::int32_t& id,
                                std::shared_ptr<IManagerTmplInfo>& oNewManagerTmpl, std::string& errMessage) {
  if (!HasAll({{firstName.empty(), "First name is required."}, {lastName.empty(), "Last name is required."}},
              errMessage)) {
    return false;
  }
  const Operation operation(*this);
  return Succeeds([&] {
    const bool isNew = id == 0;
    if (isNew) id = NextID(Schema::Manager::kTable);
    const auto manager = isNew ? std::make_shared<ManagerTmplInfo>()
                               : OwnRecord<ManagerTmplInfo>(ManagerTmplByID(id), "A manager");
    Required(manager, "There is no such manager.").ID(id);
    manager->FirstName(firstName);
    manager->LastName(lastName);
    if (isNew) Keep(m_caches.managers, manager);

    WriteRecord(Schema::Manager::kTable, id, isNew, [&](jet::Recordset& row) {
      row.Fields(Schema::Manager::kLastName).Value(lastName);
      row.Fields(Schema::Manager::kFirstName).Value(firstName);
    });
    oNewManagerTmpl = manager;
  });
}

bool DataService::UpdatePrize(const std::string& desc, std::int32_t prizeTypeID, std::int32_t& id,
                              std::shared_ptr<IPrizeTmplInfo>& oNewPrize, std::string& errMessage) {
  if (!HasAll({{desc.empty(), "Description is required."}, {prizeTypeID == 0, "Type of prize is required."}},
              errMessage)) {
    return false;
  }
  const Operation operation(*this);
  return Succeeds([&] {
    GetPrizeTmpls();
    const bool isNew = id == 0;
    if (isNew) id = NextID(Schema::Prize::kTable);
    const auto prize =
        isNew ? std::make_shared<PrizeTmplInfo>() : Known<PrizeTmplInfo>(m_caches.prizeTmpls, id, kNoPrizes);
    prize->ID(id);
    prize->Desc(desc);
    prize->PrizeType(
        Required(m_caches.prizeTypes, "The prize types are not loaded.").Item(RecordKey(prizeTypeID)));
    if (isNew) Keep(m_caches.prizeTmpls, prize);

    WriteRecord(Schema::Prize::kTable, id, isNew, [&](jet::Recordset& row) {
      row.Fields(Schema::Prize::kDesc).Value(desc);
      if (prizeTypeID > 0) row.Fields(Schema::Prize::kTypeID).Value(prizeTypeID);
    });
    oNewPrize = prize;
  });
}

}  // namespace HLDataSrvc
