#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/MasterRecords.h"
#include "HLLeague/NameIndex.h"
#include "HLLeague/Players.h"
#include "HLLeague/RecordUses.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/RecordJson.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

using HLIData::IPlayerInfo;

constexpr std::size_t kNameWidth = 40;

struct ListOptions {
  std::string team;
  std::string position;
  bool retired = false;
};

void List(Context& context, const ListOptions& options) {
  League& league = context.OpenLeague();
  const std::int32_t teamID = options.team.empty() ? 0 : TeamNames(league).IDOf(options.team);
  const std::int32_t positionID = options.position.empty() ? 0 : PositionNames(league).IDOf(options.position);
  Json document = Json::Array();
  TextTable table({{"id"}, {"name"}, {"team"}, {"position"}, {"retired"}});
  for (const auto& player : AllPlayers(league)) {
    const PlayerValues values = ValuesOf(*player);
    if ((teamID != 0 && values.teamID != teamID) || (positionID != 0 && values.positionID != positionID) ||
        (values.isRetired && !options.retired))
      continue;
    document.Append(PlayerJson(*player));
    if (context.json) continue;
    table.Add({"P" + std::to_string(player->ID()),
               CutToWidth(Printable(FullName(values.firstName, values.lastName)), kNameWidth),
               player->Team() ? Printable(player->Team()->Abbr()) : "-",
               player->Position() ? Printable(player->Position()->Abbr()) : "-",
               values.isRetired ? "yes" : ""});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else {
    context.output.Lines(table.Lines());
  }
}

void Show(Context& context, const std::vector<std::string>& who) {
  League& league = context.OpenLeague();
  const auto player = FindPlayer(league, JoinedWords(who));
  const std::vector<std::int32_t> years = YearsDrafted(league, player->ID());
  if (context.json) {
    Json json = PlayerJson(*player);
    json["drafted"] = years;
    context.output.Line(JsonText(json));
    return;
  }
  std::string drafted;
  for (const std::int32_t year : years)
    drafted += (drafted.empty() ? "" : ", ") + std::to_string(year);
  const auto team = player->Team();
  const auto position = player->Position();
  TextTable table({{"player"}, {Printable(FullName(player->FirstName(), player->LastName()))}});
  table.Add({"id", "P" + std::to_string(player->ID())});
  table.Add({"team", team ? Printable(FullName(team->Name(), team->Nickname()) + ", " + team->Abbr()) : "-"});
  table.Add({"position", position ? Printable(position->Desc() + ", " + position->Abbr()) : "-"});
  table.Add({"retired", player->IsRetired() ? "yes" : "no"});
  table.Add({"drafted", drafted.empty() ? "-" : drafted});
  context.output.Lines(table.Lines());
}

/// Tells what was saved: as JSON the player, else a sentence.
void PrintSaved(Context& context, const IPlayerInfo& player, const std::string& sentence) {
  context.output.Line(context.json ? JsonText(PlayerJson(player)) : sentence);
  NoteDone(context, "The player was saved in");
}

/// There are namesakes, but more often a player was added twice.
void NoteNamesakes(Context& context, const IPlayerInfo& added) {
  for (const auto& other : AllPlayers(context.OpenLeague())) {
    if (other->ID() == added.ID() || LowerCase(other->LastName()) != LowerCase(added.LastName()) ||
        LowerCase(other->FirstName()) != LowerCase(added.FirstName()))
      continue;
    context.messages.Note("There is " + PlayerText(*other) + " too. 'player delete P" +
                          std::to_string(added.ID()) + "' takes back what was added.");
    return;
  }
}

struct AddOptions {
  PlayerValues values;
  std::string position;
  std::string team;
};

void Add(Context& context, const AddOptions& options) {
  League& league = context.OpenLeague();
  PlayerValues values = options.values;
  if (!options.position.empty()) values.positionID = PositionNames(league).IDOf(options.position);
  if (!options.team.empty()) values.teamID = TeamNames(league).IDOf(options.team);
  const auto player = SavePlayer(league, values, 0);
  PrintSaved(context, *player, "Added " + PlayerText(*player) + ".");
  NoteNamesakes(context, *player);
}

struct EditOptions {
  std::vector<std::string> who;
  std::optional<std::string> firstName;
  std::optional<std::string> lastName;
  std::optional<std::string> position;
  std::optional<std::string> team;
  std::optional<bool> isRetired;
};

void Edit(Context& context, const EditOptions& options) {
  if (!options.firstName && !options.lastName && !options.position && !options.team && !options.isRetired) {
    throw Failure(FailureKind::WrongUsage, "Say what to change.",
                  "--first, --last, --position, --team and --retired change what they name.");
  }
  League& league = context.OpenLeague();
  const auto player = FindPlayer(league, JoinedWords(options.who));
  PlayerValues values = ValuesOf(*player);
  values.firstName = options.firstName.value_or(values.firstName);
  values.lastName = options.lastName.value_or(values.lastName);
  if (options.position)
    values.positionID = options.position->empty() ? 0 : PositionNames(league).IDOf(*options.position);
  if (options.team) values.teamID = options.team->empty() ? 0 : TeamNames(league).IDOf(*options.team);
  values.isRetired = options.isRetired.value_or(values.isRetired);
  const std::string before = PlayerText(*player);
  const auto saved = SavePlayer(league, values, player->ID());
  PrintSaved(context, *saved, before + " is now " + PlayerText(*saved) + ".");
}

void Delete(Context& context, const DeleteOptions& options) {
  League& league = context.OpenLeague();
  context.Draft().RefuseUnsaved("player delete");
  const std::string who = JoinedWords(options.who);
  const auto id = PlayerIDIn(who);
  std::shared_ptr<IPlayerInfo> player;
  if (id) {
    player = PlayerByID(league, *id);  // the service rejects unknown ids
  } else {
    player = FindPlayer(league, who);
  }
  Deletion deletion;
  deletion.type = HLIData::DeleteType::Player;
  deletion.id = player ? player->ID() : *id;
  deletion.text = player ? PlayerText(*player) : "player " + who;
  if (player)
    deletion.usedBy = [&] {
      const std::string uses = UsesOf(league, deletion.type, deletion.id);
      return uses + (uses.empty() ? "" : "\n") + "'player edit P" + std::to_string(deletion.id) +
             " --retired yes' keeps him from being drafted.";
    };
  const Json json = player ? PlayerJson(*player) : Json{{"id", *id}};
  DeleteRecord(context, deletion, options.isSure);
  // A draft that was looked at before could bring him back.
  league.Service().DiscardCurrentSeasonInfo();
  context.output.Line(context.json ? JsonText(json) : "Deleted " + deletion.text + ".");
  NoteDone(context, "The player was deleted from");
}

}  // namespace

void AddPlayerCommand(Command& app) {
  Command player = app.AddCommand("player", "The players of the league: list, add, change and delete them");

  Command list = player.AddCommand("list", "List the players who are not retired, by name");
  auto listOptions = std::make_shared<ListOptions>();
  list.AddOption("--team", "TEAM", listOptions->team, "those of this team: its short name, name or id");
  list.AddOption("--position", "POSITION", listOptions->position, "those who play this position");
  list.AddFlag("--retired", listOptions->retired, "retired players too");
  list.Runs(List, listOptions);

  Command show = player.AddCommand("show", "Show a player, and the drafts in which he was picked");
  auto shown = std::make_shared<std::vector<std::string>>();
  show.AddArgument("WHO", *shown, "a name, or the beginning of one; or an id: P17").Required();
  show.Runs(Show, shown);

  Command add = player.AddCommand("add", "Add a player");
  auto addOptions = std::make_shared<AddOptions>();
  add.AddArgument("FIRST", addOptions->values.firstName, "first name").Required();
  add.AddArgument("LAST", addOptions->values.lastName, "last name").Required();
  add.AddOption("--position", "POSITION", addOptions->position, "position: its short name, name or id");
  add.AddOption("--team", "TEAM", addOptions->team, "team: its short name, name or id");
  add.AddFlag("--retired", addOptions->values.isRetired, "he does not play any more");
  add.Runs(Add, addOptions);

  Command edit = player.AddCommand("edit", "Change a player");
  auto editOptions = std::make_shared<EditOptions>();
  edit.AddArgument("WHO", editOptions->who, "a name, or the beginning of one; or an id: P17").Required();
  edit.AddOption("--first", "NAME", editOptions->firstName, "first name");
  edit.AddOption("--last", "NAME", editOptions->lastName, "last name");
  edit.AddOption("--position", "POSITION", editOptions->position, "position: its short name, name or id");
  edit.AddOption("--team", "TEAM", editOptions->team, "team: its short name, name or id");
  edit.AddOption("--retired", editOptions->isRetired, "whether he does not play any more");
  edit.Runs(Edit, editOptions);

  AddDeleteCommand(player, "Delete a player whom no draft has", "WHO", Delete);
}

}  // namespace cli
