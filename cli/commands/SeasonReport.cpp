#include "cli/commands/SeasonReport.h"

#include "HLLeague/DraftSession.h"
#include "HLLeague/League.h"
#include "HLLeague/Seasons.h"
#include "league/Numbers.h"
#include "league/TextTable.h"

namespace cli {

using namespace HLLeague;

namespace {

/// The locks that are set: "ranking, draft"; "-" for none.
std::string LocksText(const HLIData::ISeasonInfo& season) {
  std::string text;
  const auto add = [&text](bool isLocked, const char* name) {
    if (isLocked) text += (text.empty() ? "" : ", ") + std::string(name);
  };
  add(season.IsRankingLocked(), "ranking");
  add(season.IsDraftLocked(), "draft");
  add(season.IsSeasonLocked(), "season");
  return text.empty() ? "-" : text;
}

/// "12", or "8 of 12" while some are missing.
std::string PartOf(std::int32_t part, std::int32_t whole) {
  return part == whole ? std::to_string(whole) : std::to_string(part) + " of " + std::to_string(whole);
}

}  // namespace

Json SeasonJson(DraftSession& draft, const HLIData::ISeasonInfo& season) {
  Json json;
  json["id"] = season.ID();
  json["year"] = season.Year();
  json["isCurrent"] = IsCurrent(draft.GetLeague(), season);
  json["noOfManagers"] = season.NoOfManagers();
  json["managersPlaying"] = ManagersOf(season).Count();
  json["noOfRounds"] = season.NoOfRounds();
  json["noOfPicks"] = DraftsOf(season).Count();
  json["picksMade"] = PicksMadeIn(draft, season);
  json["moneyContribution"] = season.MoneyContribution();
  json["noOfRegularWeeks"] = season.NoOfRegularWeeks();
  json["totalNoOfWeeks"] = season.TotalNoOfWeeks();
  json["noOfPrizes"] = PrizesOf(season).Count();
  json["noOfWinnings"] = WinningsOf(season).Count();
  json["hasSeasonStarted"] = season.HasSeasonStarted();
  json["isRankingLocked"] = season.IsRankingLocked();
  json["isDraftLocked"] = season.IsDraftLocked();
  json["isSeasonLocked"] = season.IsSeasonLocked();
  return json;
}

void PrintSeason(Context& context, const HLIData::ISeasonInfo& season) {
  League& league = context.OpenLeague();
  if (context.json) {
    context.output.Line(JsonText(SeasonJson(context.Draft(), season)));
    return;
  }
  const auto line = [&context](const std::string& name, const std::string& text) {
    context.output.Line(name + std::string(14 - name.size(), ' ') + text);
  };
  const auto text = [](std::int32_t number) { return std::to_string(number); };
  line("season", text(season.Year()) + " (id " + text(season.ID()) +
                     (IsCurrent(league, season) ? ", the current season)" : ")"));
  line("managers", text(season.NoOfManagers()) + ", of whom " + text(ManagersOf(season).Count()) +
                       (ManagersOf(season).Count() == 1 ? " takes part" : " take part"));
  line("rounds", text(season.NoOfRounds()));
  line("contribution", text(season.MoneyContribution()));
  line("weeks", text(season.TotalNoOfWeeks()) + ", " + text(season.NoOfRegularWeeks()) + " of them regular");
  line("started", season.HasSeasonStarted() ? "yes" : "no");
  line("locked", LocksText(season));
  line("picks", text(PicksMadeIn(context.Draft(), season)) + " of " + text(DraftsOf(season).Count()));
  line("prizes", text(PrizesOf(season).Count()));
  line("winnings", text(WinningsOf(season).Count()));
}

void PrintSeasons(Context& context, const std::vector<std::shared_ptr<HLIData::ISeasonInfo>>& seasons) {
  League& league = context.OpenLeague();
  if (context.json) {
    Json document = Json::Array();
    for (const auto& season : seasons)
      document.Append(SeasonJson(context.Draft(), *season));
    context.output.Line(JsonText(document));
    return;
  }
  using Align = TextTable::Align;
  TextTable table({{""},
                   {"year", Align::Right},
                   {"id", Align::Right},
                   {"managers", Align::Right},
                   {"rounds", Align::Right},
                   {"picks", Align::Right},
                   {"weeks", Align::Right},
                   {"started"},
                   {"locked"}});
  for (const auto& season : seasons) {
    table.Add({IsCurrent(league, *season) ? "*" : "", std::to_string(season->Year()),
               std::to_string(season->ID()), PartOf(ManagersOf(*season).Count(), season->NoOfManagers()),
               std::to_string(season->NoOfRounds()),
               PartOf(PicksMadeIn(context.Draft(), *season), DraftsOf(*season).Count()),
               std::to_string(season->TotalNoOfWeeks()), season->HasSeasonStarted() ? "yes" : "no",
               LocksText(*season)});
  }
  context.output.Lines(table.Lines());
}

}  // namespace cli
