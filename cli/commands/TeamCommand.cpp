#include "HLLeague/League.h"
#include "cli/commands/Commands.h"
#include "cli/output/Json.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNameWidth = 24;

void List(Context& context) {
  League& league = context.OpenLeague();
  const auto teams = league.Service().GetTeams();
  league.RaiseShownMessages();
  Json document = Json::Array();
  TextTable table({{"id", TextTable::Align::Right}, {"short"}, {"name"}, {"nickname"}, {"position"}});
  for (const auto& team : teams->Items()) {
    const auto position = team->Position();
    Json json;
    json["id"] = team->ID();
    json["abbr"] = team->Abbr();
    json["name"] = team->Name();
    json["nickname"] = team->Nickname();
    json["position"] = position ? Json(position->Abbr()) : Json();
    document.Append(json);
    table.Add(
        {std::to_string(team->ID()), Printable(team->Abbr()), CutToWidth(Printable(team->Name()), kNameWidth),
         CutToWidth(Printable(team->Nickname()), kNameWidth), position ? Printable(position->Abbr()) : "-"});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else {
    context.output.Lines(table.Lines());
  }
}

}  // namespace

void AddTeamCommand(Command& app) {
  Command team = app.AddCommand("team", "The teams that players play in, which can be drafted themselves");
  team.AddCommand("list", "List all teams").Runs(List);
}

}  // namespace cli
