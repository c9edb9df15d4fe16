#include <memory>
#include <string>
#include <vector>

#include "HLIData/IPlayerInfo.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/MasterRecords.h"
#include "HLLeague/Pickables.h"
#include "HLLeague/Players.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/Json.h"
#include "cli/output/RecordJson.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

using HLIData::IPickable;
using HLIData::SearchType;

constexpr std::size_t kNameWidth = 40;

struct SearchOptions {
  std::vector<std::string> words;
  std::string type = "players";
  bool currentSeasonOnly = false;
  bool skipRetired = false;
};

SearchType TypeOf(const std::string& name) {
  if (name == "managers") return SearchType::Managers;
  if (name == "prizes") return SearchType::Prizes;
  if (name == "positions") return SearchType::Positions;
  return SearchType::PlayersAndTeams;
}

/// One thing found, as JSON and as the cells of a row.
struct Row {
  Json json;
  std::vector<std::string> cells;
};

std::string Cell(const std::string& text) {
  return text.empty() ? "-" : CutToWidth(Printable(text), kNameWidth);
}

Row PlayerOrTeamRow(const IPickable& pickable) {
  const PickableFacts facts = FactsOf(pickable);
  const auto* player = dynamic_cast<const HLIData::IPlayerInfo*>(&pickable);
  Row row;
  row.json = PickableJson(facts);
  row.json["kind"] = player == nullptr ? "team" : "player";
  row.json["isRetired"] = player != nullptr && player->IsRetired();
  row.cells = {facts.id, Cell(facts.name), Cell(facts.team), Cell(facts.position),
               player != nullptr && player->IsRetired() ? "yes" : ""};
  return row;
}

Row RowOf(const IPickable& pickable) {
  const std::string id = std::to_string(pickable.PickID());
  if (const auto* manager = dynamic_cast<const HLIData::IManagerTmplInfo*>(&pickable)) {
    return {{{"id", manager->ID()}, {"name", FullName(*manager)}}, {id, Cell(FullName(*manager))}};
  }
  if (const auto* prize = dynamic_cast<const HLIData::IPrizeTmplInfo*>(&pickable)) {
    const std::string type = prize->PrizeType() ? prize->PrizeType()->Name() : std::string();
    return {{{"id", prize->ID()}, {"name", prize->Desc()}, {"type", type}},
            {id, Cell(prize->Desc()), Cell(type)}};
  }
  if (const auto* position = dynamic_cast<const HLIData::IPositionInfo*>(&pickable)) {
    return {{{"id", position->ID()}, {"abbr", position->Abbr()}, {"desc", position->Desc()}},
            {id, Cell(position->Abbr()), Cell(position->Desc())}};
  }
  return PlayerOrTeamRow(pickable);
}

TextTable TableFor(SearchType type) {
  const TextTable::Column id{"id", TextTable::Align::Right};
  switch (type) {
    case SearchType::Managers:
      return TextTable({id, {"manager"}});
    case SearchType::Prizes:
      return TextTable({id, {"prize"}, {"type"}});
    case SearchType::Positions:
      return TextTable({id, {"short"}, {"position"}});
    case SearchType::PlayersAndTeams:
      break;
  }
  return TextTable({{"id"}, {"name"}, {"team"}, {"position"}, {"retired"}});
}

void RequireOptionsFit(League& league, SearchType type, const SearchOptions& options) {
  const bool hasSeason = type == SearchType::Managers || type == SearchType::Prizes;
  if (options.currentSeasonOnly && !hasSeason)
    throw Failure(FailureKind::WrongUsage, "--season goes with --type managers and --type prizes.");
  if (options.skipRetired && type != SearchType::PlayersAndTeams)
    throw Failure(FailureKind::WrongUsage, "--no-retired goes with --type players.");
  if (options.currentSeasonOnly && league.Service().CurrentSeasonID() == 0) {
    throw Failure(FailureKind::Refused, "No season is the current one.",
                  "'season use YEAR' makes a season the current one.");
  }
}

/// What the service finds. It takes the text into its statement as it is, which an apostrophe breaks.
std::vector<std::shared_ptr<IPickable>> Found(League& league, SearchType type, const std::string& text,
                                              const SearchOptions& options) {
  const auto found = league.Service().Search(type, text, options.currentSeasonOnly, options.skipRetired);
  try {
    league.RaiseShownMessages();
  } catch (const Failure& failure) {
    if (text.find('\'') == std::string::npos) throw;
    throw Failure(failure.Kind(), failure.what(),
                  "An apostrophe cannot be searched for; ? stands for any character: O?Brien.");
  }
  return found ? found->Items() : std::vector<std::shared_ptr<IPickable>>();
}

void Search(Context& context, const SearchOptions& options) {
  League& league = context.OpenLeague();
  const SearchType type = TypeOf(options.type);
  RequireOptionsFit(league, type, options);
  const std::string text = JoinedWords(options.words);
  const auto found = Found(league, type, text, options);
  Json document = Json::Array();
  TextTable table = TableFor(type);
  for (const auto& pickable : found) {
    Row row = RowOf(*pickable);
    document.Append(std::move(row.json));
    table.Add(std::move(row.cells));
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else if (!found.empty()) {
    context.output.Lines(table.Lines());
  }
  if (found.empty()) context.messages.Note("Nothing was found.");
}

}  // namespace

void AddSearchCommand(Command& app) {
  Command search =
      app.AddCommand("search", "Search players and teams, managers, prizes or positions by name");
  auto options = std::make_shared<SearchOptions>();
  search
      .AddArgument("TEXT", options->words,
                   "beginnings of names; of prizes and positions any part. \"\" finds all")
      .Required();
  search.AddOption("--type", "TYPE", options->type, "players (and teams), managers, prizes or positions")
      .OneOf({"players", "managers", "prizes", "positions"})
      .ShowsDefault();
  search.AddFlag("--season", options->currentSeasonOnly,
                 "only managers who take part in the current season, prizes that it puts up");
  search.AddFlag("--no-retired", options->skipRetired, "leave out retired players");
  search.Runs(Search, options);
}

}  // namespace cli
