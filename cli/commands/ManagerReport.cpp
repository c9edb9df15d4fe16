#include "cli/commands/ManagerReport.h"

#include <algorithm>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Seasons.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"
#include "records/RecordKey.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNameWidth = 40;

std::string RankText(std::int32_t rank) {
  return rank < 1 ? "-" : std::to_string(rank);
}

Json RankJson(std::int32_t rank) {
  return rank < 1 ? Json() : Json(rank);
}

/// "Season 2021: 12 of 12 managers take part, 12 are ranked, 11 have paid."
std::string Summary(const HLIData::ISeasonInfo& season) {
  const auto managers = ManagersOf(season).Items();
  const auto ranked =
      std::count_if(managers.begin(), managers.end(), [](const auto& m) { return m->Rank() >= 1; });
  const auto paid =
      std::count_if(managers.begin(), managers.end(), [](const auto& m) { return m->IsFeePaid(); });
  return "Season " + std::to_string(season.Year()) + ": " + std::to_string(managers.size()) + " of " +
         CountOf(season.NoOfManagers(), "manager") + (managers.size() == 1 ? " takes" : " take") + " part, " +
         std::to_string(ranked) + (ranked == 1 ? " is" : " are") + " ranked, " + std::to_string(paid) +
         (paid == 1 ? " has" : " have") + " paid.";
}

}  // namespace

void PrintManagers(Context& context, const HLIData::ISeasonInfo& season) {
  auto picks = PicksByManager(context.Draft(), season);
  if (context.json) {
    Json document;
    document["season"] = season.Year();
    document["noOfManagers"] = season.NoOfManagers();
    document["managers"] = Json::Array();
    for (const auto& manager : ManagersInOrder(season)) {
      Json json;
      json["rank"] = RankJson(manager->Rank());
      json["id"] = manager->ID();
      json["name"] = FullName(*manager);
      json["isFeePaid"] = manager->IsFeePaid();
      json["picks"] = picks[manager->ID()];
      document["managers"].Append(json);
    }
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line(Summary(season));
  if (ManagersOf(season).Count() == 0) return;
  using Align = TextTable::Align;
  TextTable table(
      {{"rank", Align::Right}, {"id", Align::Right}, {"manager"}, {"fee"}, {"picks", Align::Right}});
  for (const auto& manager : ManagersInOrder(season)) {
    table.Add({RankText(manager->Rank()), std::to_string(manager->ID()),
               CutToWidth(Printable(FullName(*manager)), kNameWidth),
               manager->IsFeePaid() ? "paid" : "unpaid", std::to_string(picks[manager->ID()])});
  }
  context.output.Lines(table.Lines());
}

void PrintAllManagers(Context& context, const HLIData::ISeasonInfo* season) {
  const auto managers = AllManagers(context.OpenLeague());
  const auto takesPart = [season](std::int32_t id) {
    return season != nullptr && ManagersOf(*season).Find(HLDataSrvc::RecordKey(id)) != nullptr;
  };
  if (context.json) {
    Json document;
    document["season"] = season == nullptr ? Json() : Json(season->Year());
    document["managers"] = Json::Array();
    for (const auto& manager : managers) {
      Json json;
      json["id"] = manager->ID();
      json["name"] = FullName(*manager);
      json["takesPart"] = takesPart(manager->ID());
      document["managers"].Append(json);
    }
    context.output.Line(JsonText(document));
    return;
  }
  TextTable table({{"id", TextTable::Align::Right},
                   {"manager"},
                   {season == nullptr ? "takes part" : "takes part in " + std::to_string(season->Year())}});
  for (const auto& manager : managers) {
    table.Add({std::to_string(manager->ID()), CutToWidth(Printable(FullName(*manager)), kNameWidth),
               takesPart(manager->ID()) ? "yes" : "-"});
  }
  context.output.Lines(table.Lines());
}

}  // namespace cli
