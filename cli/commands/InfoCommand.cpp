#include <memory>

#include "HLLeague/League.h"
#include "cli/commands/Commands.h"
#include "cli/output/Json.h"
#include "jet/dao/DBEngine.h"
#include "league/TextTable.h"
#include "storage/HLServiceUtils.h"

namespace cli {

using namespace HLLeague;

namespace {

struct LeagueFacts {
  std::string path;
  std::int32_t currentSeason = 0;
  std::vector<jet::TableInfo> tables;
};

LeagueFacts ReadFacts(Context& context) {
  League& league = context.OpenLeague();
  LeagueFacts facts;
  facts.path = league.Path();
  facts.currentSeason = league.Service().CurrentSeasonID();
  league.Service().CloseDatabase();

  const auto database = jet::DBEngine().OpenDatabase(facts.path, /*exclusive=*/false, /*readOnly=*/true,
                                                     HLDataSrvc::HLServiceUtils::GetConnectString());
  for (jet::TableInfo& table : database->Tables()) {
    if (!table.isSystem) facts.tables.push_back(std::move(table));
  }
  return facts;
}

void Info(Context& context) {
  const LeagueFacts facts = ReadFacts(context);
  if (context.json) {
    Json document;
    document["file"] = facts.path;
    document["kind"] = context.kindName;
    document["currentSeasonID"] = facts.currentSeason;
    Json rows;
    for (const jet::TableInfo& table : facts.tables)
      rows[table.name] = table.rowCount;
    document["rows"] = rows;
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line("file            " + facts.path);
  context.output.Line("kind            " + context.kindName);
  context.output.Line("current season  " +
                      (facts.currentSeason == 0 ? "none" : std::to_string(facts.currentSeason)));
  context.output.Line("");
  TextTable list({{"table"}, {"rows", TextTable::Align::Right}});
  for (const jet::TableInfo& table : facts.tables)
    list.Add({table.name, std::to_string(table.rowCount)});
  context.output.Lines(list.Lines());
}

}  // namespace

void AddInfoCommand(Command& app) {
  Command command = app.AddCommand("info", "Show the league: its file, its current season, what is in it");
  command.Runs(Info);
}

}  // namespace cli
