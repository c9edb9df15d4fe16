#include "cli/commands/PrizeReport.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "HLLeague/Accounts.h"
#include "HLLeague/League.h"
#include "HLLeague/Prizes.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/Winnings.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"
#include "records/RecordKey.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNameWidth = 30;
constexpr std::size_t kTypeWidth = 16;

std::string TypeName(const std::shared_ptr<HLIData::IPrizeTypeInfo>& type) {
  return type ? type->Name() : std::string();
}

/// How often the prizes of a season were won, by their ids.
std::map<std::int32_t, std::int64_t> TimesWon(League& league, const HLIData::ISeasonInfo& season) {
  std::map<std::int32_t, std::int64_t> times;
  for (const Winning& winning : WinningsIn(league, season))
    ++times[winning.prizeID];
  return times;
}

std::int64_t PutUpIn(const HLIData::ISeasonInfo& season) {
  std::int64_t sum = 0;
  for (const auto& prize : PrizesOf(season))
    sum += prize->Amount();
  return sum;
}

/// "Season 2021: 8 prizes of 680 together; pool 720 (12 managers x 60), 40 left."
std::string Summary(const HLIData::ISeasonInfo& season) {
  const std::int64_t putUp = PutUpIn(season);
  const std::int64_t left = PoolOf(season) - putUp;
  return "Season " + std::to_string(season.Year()) + ": " + CountOf(PrizesOf(season).Count(), "prize") +
         " of " + std::to_string(putUp) + " together; pool " + std::to_string(PoolOf(season)) + " (" +
         CountOf(season.NoOfManagers(), "manager") + " x " + std::to_string(season.MoneyContribution()) +
         "), " + (left < 0 ? std::to_string(-left) + " short." : std::to_string(left) + " left.");
}

Json PrizesJson(League& league, const HLIData::ISeasonInfo& season) {
  auto times = TimesWon(league, season);
  Json document;
  document["season"] = season.Year();
  document["prizes"] = Json::Array();
  for (const auto& prize : PrizesOf(season)) {
    Json json;
    json["id"] = prize->ID();
    json["name"] = prize->Desc();
    json["type"] = TypeName(prize->PrizeType());
    json["amount"] = prize->Amount();
    json["timesWon"] = times[prize->ID()];
    json["paidOut"] = prize->Amount() * times[prize->ID()];
    document["prizes"].Append(json);
  }
  document["putUp"] = PutUpIn(season);
  document["pool"] = PoolOf(season);
  return document;
}

std::optional<std::int32_t> AmountIn(const HLIData::ISeasonInfo* season, std::int32_t prizeID) {
  const auto prize = season == nullptr ? nullptr : PrizesOf(*season).Find(HLDataSrvc::RecordKey(prizeID));
  return prize ? std::optional(prize->Amount()) : std::nullopt;
}

}  // namespace

void PrintPrizes(Context& context, const HLIData::ISeasonInfo& season) {
  League& league = context.OpenLeague();
  if (context.json) {
    context.output.Line(JsonText(PrizesJson(league, season)));
    return;
  }
  context.output.Line(Summary(season));
  if (PrizesOf(season).Count() == 0) return;
  using Align = TextTable::Align;
  TextTable table({{"id", Align::Right},
                   {"prize"},
                   {"type"},
                   {"amount", Align::Right},
                   {"won", Align::Right},
                   {"paid out", Align::Right}});
  auto times = TimesWon(league, season);
  for (const auto& prize : PrizesOf(season)) {
    const std::int64_t won = times[prize->ID()];
    table.Add({std::to_string(prize->ID()), CutToWidth(Printable(prize->Desc()), kNameWidth),
               CutToWidth(Printable(TypeName(prize->PrizeType())), kTypeWidth),
               std::to_string(prize->Amount()), std::to_string(won), std::to_string(prize->Amount() * won)});
  }
  context.output.Lines(table.Lines());
}

void PrintAllPrizes(Context& context, const HLIData::ISeasonInfo* season) {
  League& league = context.OpenLeague();
  const auto prizes = AllPrizes(league);
  Json document;
  document["season"] = season == nullptr ? Json() : Json(season->Year());
  document["prizes"] = Json::Array();
  TextTable table({{"id", TextTable::Align::Right},
                   {"prize"},
                   {"type"},
                   {season == nullptr ? "amount" : "amount in " + std::to_string(season->Year()),
                    TextTable::Align::Right}});
  for (const auto& prize : prizes) {
    const auto amount = AmountIn(season, prize->ID());
    const std::string type = TypeName(prize->PrizeType());
    Json json;
    json["id"] = prize->ID();
    json["name"] = prize->Desc();
    json["type"] = type;
    json["amount"] = amount ? Json(*amount) : Json();
    document["prizes"].Append(json);
    table.Add({std::to_string(prize->ID()), CutToWidth(Printable(prize->Desc()), kNameWidth),
               CutToWidth(Printable(type), kTypeWidth), amount ? std::to_string(*amount) : "-"});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else {
    context.output.Lines(table.Lines());
  }
  NoteBrokenPrizes(league, prizes);
}

}  // namespace cli
