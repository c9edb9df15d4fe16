#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/Find.h"
#include "HLLeague/MasterRecords.h"
#include "HLLeague/NameIndex.h"
#include "HLLeague/Prizes.h"
#include "HLLeague/RecordUses.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

using Prize = HLIData::IPrizeTmplInfo;

std::string TypeName(const Prize& prize) {
  const auto type = prize.PrizeType();
  return type ? type->Name() : std::string();
}

std::string PrizeText(const Prize& prize) {
  const std::string type = Printable(TypeName(prize));
  return Printable(prize.Desc()) + " (" + std::to_string(prize.ID()) + (type.empty() ? "" : ", " + type) +
         ")";
}

Json PrizeJson(const Prize& prize) {
  Json json;
  json["id"] = prize.ID();
  json["name"] = prize.Desc();
  json["type"] = TypeName(prize);
  return json;
}

void PrintSaved(Context& context, const Prize& prize, const std::string& sentence) {
  context.output.Line(context.json ? JsonText(PrizeJson(prize)) : sentence);
  NoteDone(context, "The prize was saved in");
}

struct AddOptions {
  std::string name;
  std::string type;
};

void Add(Context& context, const AddOptions& options) {
  League& league = context.OpenLeague();
  const std::int32_t typeID = options.type.empty() ? 0 : PrizeTypeNames(league).IDOf(options.type);
  const auto prize = SavePrize(league, options.name, typeID, 0);
  PrintSaved(context, *prize, "Added " + PrizeText(*prize) + ".");
  for (const auto& other : AllPrizes(league)) {
    if (other->ID() == prize->ID() || LowerCase(other->Desc()) != LowerCase(prize->Desc())) continue;
    context.messages.Note("There is " + PrizeText(*other) + " too. 'prize delete " +
                          std::to_string(prize->ID()) + "' takes back what was added.");
    return;
  }
}

struct EditOptions {
  std::vector<std::string> prize;
  std::optional<std::string> name;
  std::optional<std::string> type;
};

void Edit(Context& context, const EditOptions& options) {
  if (!options.name && !options.type)
    throw Failure(FailureKind::WrongUsage, "Say what to change.", "--name and --type change what they name.");
  League& league = context.OpenLeague();
  const auto prize = FindPrizeTmpl(league, JoinedWords(options.prize));
  const std::string before = PrizeText(*prize);
  std::int32_t typeID = prize->PrizeType() ? prize->PrizeType()->ID() : 0;
  if (options.type) typeID = options.type->empty() ? 0 : PrizeTypeNames(league).IDOf(*options.type);
  const auto saved = SavePrize(league, options.name.value_or(prize->Desc()), typeID, prize->ID());
  PrintSaved(context, *saved, before + " is now " + PrizeText(*saved) + ".");
}

void Delete(Context& context, const DeleteOptions& options) {
  League& league = context.OpenLeague();
  const std::string word = JoinedWords(options.who);
  const auto id = WholeNumber(word);
  const auto prizes = AllPrizes(league);
  const auto ofID =
      std::find_if(prizes.begin(), prizes.end(), [&](const auto& prize) { return prize->ID() == id; });
  // The service rejects unknown ids.
  const auto prize = !id ? FindPrizeTmpl(league, word) : ofID == prizes.end() ? nullptr : *ofID;
  Deletion deletion;
  deletion.type = HLIData::DeleteType::Prize;
  deletion.id = prize ? prize->ID() : *id;
  deletion.text = prize ? PrizeText(*prize) : "prize " + word;
  if (prize)
    deletion.usedBy = [&] {
      return UsesOf(league, deletion.type, deletion.id) +
             "\n'prize remove' takes it out of the current season, if nobody has won it.";
    };
  const Json json = prize ? PrizeJson(*prize) : Json{{"id", *id}};
  DeleteRecord(context, deletion, options.isSure);
  context.output.Line(context.json ? JsonText(json) : "Deleted " + deletion.text + ".");
  NoteDone(context, "The prize was deleted from");
}

}  // namespace

void AddPrizeRecordCommands(Command& prize) {
  Command add = prize.AddCommand("add", "Add a prize to the league; 'set' puts it up in the season");
  auto addOptions = std::make_shared<AddOptions>();
  add.AddArgument("NAME", addOptions->name, "what the prize is called").Required();
  add.AddOption("--type", "TYPE", addOptions->type, "type of prize: its name or id");
  add.Runs(Add, addOptions);

  Command edit = prize.AddCommand("edit", "Change a prize's name or type");
  auto editOptions = std::make_shared<EditOptions>();
  edit.AddArgument("PRIZE", editOptions->prize, "a name, or the id").Required();
  edit.AddOption("--name", "NAME", editOptions->name, "what it is called");
  edit.AddOption("--type", "TYPE", editOptions->type, "type of prize: its name or id");
  edit.Runs(Edit, editOptions);

  AddDeleteCommand(prize, "Delete a prize that no season has put up", "PRIZE", Delete);
}

}  // namespace cli
