#include "HLLeague/League.h"
#include "cli/commands/Commands.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/Json.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

void List(Context& context) {
  League& league = context.OpenLeague();
  const auto positions = league.Service().GetPlayerPositions();
  league.RaiseShownMessages();
  Json document = Json::Array();
  TextTable table({{"id", TextTable::Align::Right}, {"short"}, {"position"}});
  for (const auto& position : positions->Items()) {
    document.Append({{"id", position->ID()}, {"abbr", position->Abbr()}, {"desc", position->Desc()}});
    table.Add({std::to_string(position->ID()), Printable(position->Abbr()), Printable(position->Desc())});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else {
    context.output.Lines(table.Lines());
  }
}

}  // namespace

void AddPositionCommand(Command& app) {
  Command position = app.AddCommand("position", "The positions that players have");
  position.AddCommand("list", "List all positions").Runs(List);
  AddPositionRecordCommands(position);
}

}  // namespace cli
