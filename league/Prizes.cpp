#include "HLLeague/Prizes.h"

#include <algorithm>
#include <utility>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/Failure.h"
#include "HLLeague/MasterRecords.h"
#include "league/Numbers.h"
#include "records/RecordKey.h"
#include "storage/Schema.h"

namespace HLLeague {
namespace {

namespace Schema = HLDataSrvc::Schema;
using HLIData::IPrizeTmplInfo;
using HLIData::IPrizeTypeInfo;

/// A prize as its row has it, because the service could not load it.
class UnloadedPrize final : public IPrizeTmplInfo {
 public:
  UnloadedPrize(std::int32_t id, std::string desc, std::int32_t typeID, std::shared_ptr<IPrizeTypeInfo> type)
      : m_id(id), m_desc(std::move(desc)), m_typeID(typeID), m_type(std::move(type)) {}

  std::int32_t ID() const override { return m_id; }
  std::string Desc() const override { return m_desc; }
  std::shared_ptr<IPrizeTypeInfo> PrizeType() const override { return m_type; }
  /// The type that the row names, whether there is one or not; 0 for none.
  std::int32_t TypeID() const { return m_typeID; }

 private:
  std::int32_t m_id;
  std::string m_desc;
  std::int32_t m_typeID;
  std::shared_ptr<IPrizeTypeInfo> m_type;
};

/// The prizes that the service has loaded: all, or those before the first whose type does not exist.
std::shared_ptr<HLIData::KeyedCollection<IPrizeTmplInfo>> LoadedPrizes(League& league) {
  auto prizes = league.Service().GetPrizeTmpls();
  // A service that has failed once shows no message again, and hands out what it reached.
  if (!league.TakeShownMessages().empty()) prizes = league.Service().GetPrizeTmpls();
  league.TakeShownMessages();
  return prizes;
}

/// What is wrong with a prize whose type does not exist; empty for others.
std::string ProblemOf(const IPrizeTmplInfo& prize) {
  const auto* unloaded = dynamic_cast<const UnloadedPrize*>(&prize);
  if (unloaded == nullptr || unloaded->PrizeType()) return {};
  return "Prize " + std::to_string(prize.ID()) + " (" + prize.Desc() + ") is of type " +
         std::to_string(unloaded->TypeID()) + ", which does not exist.";
}

std::string MendingHint(const IPrizeTmplInfo& prize) {
  return "'prize edit " + std::to_string(prize.ID()) + " --type TYPE' mends it.";
}

/// Changes the row of a prize that the service has not loaded, and therefore does not edit.
std::shared_ptr<IPrizeTmplInfo> SaveUnloaded(League& league, const std::string& name, std::int32_t typeID,
                                             std::int32_t id) {
  const std::string select = "select * from [" + std::string(Schema::Prize::kTable) + "] where [" +
                             Schema::Prize::kID + "] = " + std::to_string(id);
  league.Transact("The prize could not be saved.", [&] {
    HLDataSrvc::EditRows(league.Service(), select,
                         {{Schema::Prize::kDesc, name}, {Schema::Prize::kTypeID, std::to_string(typeID)}});
  });
  league.Reload();
  const auto prizes = AllPrizes(league);
  return *std::find_if(prizes.begin(), prizes.end(), [id](const auto& prize) { return prize->ID() == id; });
}

}  // namespace

std::vector<std::shared_ptr<IPrizeTmplInfo>> AllPrizes(League& league) {
  const auto loaded = LoadedPrizes(league);
  const auto types = league.Service().GetPrizeTypes();
  const std::string select = "select [" + std::string(Schema::Prize::kID) + "], [" + Schema::Prize::kDesc +
                             "], [" + Schema::Prize::kTypeID + "] from [" + Schema::Prize::kTable + "]";
  std::vector<std::shared_ptr<IPrizeTmplInfo>> prizes;
  for (const HLDataSrvc::TextRow& row : HLDataSrvc::SelectRows(league.Service(), select)) {
    const std::int32_t id = WholeNumber(row[0].value_or("")).value_or(0);
    auto prize = loaded ? loaded->Find(HLDataSrvc::RecordKey(id)) : nullptr;
    if (!prize) {
      const std::int32_t typeID = WholeNumber(row[2].value_or("")).value_or(0);
      prize = std::make_shared<UnloadedPrize>(id, row[1].value_or(""), typeID,
                                              types ? types->Find(HLDataSrvc::RecordKey(typeID)) : nullptr);
    }
    prizes.push_back(std::move(prize));
  }
  return prizes;
}

void NoteBrokenPrizes(League& league, const std::vector<std::shared_ptr<IPrizeTmplInfo>>& prizes) {
  for (const auto& prize : prizes) {
    const std::string problem = ProblemOf(*prize);
    if (!problem.empty()) league.Note(problem + " " + MendingHint(*prize));
  }
}

void RequireLoaded(League& league, const IPrizeTmplInfo& prize) {
  if (dynamic_cast<const UnloadedPrize*>(&prize) == nullptr) return;
  for (const auto& other : AllPrizes(league)) {
    const std::string problem = ProblemOf(*other);
    if (!problem.empty()) throw Failure(FailureKind::Refused, problem, MendingHint(*other));
  }
  throw Failure(FailureKind::Refused, "Prize " + std::to_string(prize.ID()) + " could not be loaded.");
}

std::shared_ptr<IPrizeTmplInfo> SavePrize(League& league, const std::string& name, std::int32_t typeID,
                                          std::int32_t id) {
  RequireFits(league, Schema::Prize::kTable, Schema::Prize::kDesc, "name of the prize", name);
  const auto loaded = LoadedPrizes(league);  // first, so that a prize of no type does not stop the saving
  const bool isLoaded = id == 0 || (loaded && loaded->Find(HLDataSrvc::RecordKey(id)));
  if (!isLoaded && !name.empty() && typeID != 0) return SaveUnloaded(league, name, typeID, id);
  std::shared_ptr<IPrizeTmplInfo> saved;
  SaveRecord(league, "The prize", [&](std::string& message) {
    return league.Service().UpdatePrize(name, typeID, id, saved, message);
  });
  return saved;
}

}  // namespace HLLeague
