#include <memory>
#include <optional>
#include <string>

#include "HLLeague/MasterRecords.h"
#include "HLLeague/NameIndex.h"
#include "HLLeague/RecordUses.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/Utf8.h"
#include "records/RecordKey.h"
#include "storage/Schema.h"

namespace cli {

using namespace HLLeague;

namespace {

namespace Schema = HLDataSrvc::Schema;
using Position = HLIData::IPositionInfo;

std::string PositionText(const Position& position) {
  return Printable(position.Desc()) + " (" + std::to_string(position.ID()) + ", " +
         Printable(position.Abbr()) + ")";
}

Json PositionJson(const Position& position) {
  return {{"id", position.ID()}, {"abbr", position.Abbr()}, {"desc", position.Desc()}};
}

HLIData::KeyedCollection<Position>& AllPositions(League& league) {
  const auto positions = league.Service().GetPlayerPositions();
  league.RaiseShownMessages();
  if (!positions) throw Failure(FailureKind::Refused, "The positions could not be loaded.");
  return *positions;
}

std::shared_ptr<Position> Find(League& league, const std::string& word) {
  return AllPositions(league).Item(HLDataSrvc::RecordKey(PositionNames(league).IDOf(word)));
}

std::shared_ptr<Position> Save(League& league, const std::string& abbr, const std::string& desc,
                               std::int32_t id) {
  RequireFits(league, Schema::Position::kTable, Schema::Position::kAbbr, "short name", abbr);
  RequireFits(league, Schema::Position::kTable, Schema::Position::kDesc, "name of the position", desc);
  std::shared_ptr<Position> saved;
  SaveRecord(league, "The position", [&](std::string& message) {
    return league.Service().UpdatePosition(desc, abbr, id, saved, message);
  });
  return saved;
}

void PrintSaved(Context& context, const Position& position, const std::string& sentence) {
  context.output.Line(context.json ? JsonText(PositionJson(position)) : sentence);
  NoteDone(context, "The position was saved in");
}

/// Positions are chosen by their short names: duplicates would be ambiguous.
void RequireFree(League& league, const std::string& abbr, std::int32_t id) {
  for (const auto& other : AllPositions(league)) {
    if (other->ID() == id || abbr.empty() || LowerCase(other->Abbr()) != LowerCase(abbr)) continue;
    throw Failure(FailureKind::Refused,
                  "The short name '" + abbr + "' is that of " + PositionText(*other) + " already.");
  }
}

struct AddOptions {
  std::string abbr;
  std::string desc;
};

void Add(Context& context, const AddOptions& options) {
  League& league = context.OpenLeague();
  RequireFree(league, options.abbr, 0);
  const auto position = Save(league, options.abbr, options.desc, 0);
  PrintSaved(context, *position, "Added " + PositionText(*position) + ".");
}

struct EditOptions {
  std::vector<std::string> position;
  std::optional<std::string> abbr;
  std::optional<std::string> desc;
};

void Edit(Context& context, const EditOptions& options) {
  if (!options.abbr && !options.desc)
    throw Failure(FailureKind::WrongUsage, "Say what to change.",
                  "--short and --name change what they name.");
  League& league = context.OpenLeague();
  const auto position = Find(league, JoinedWords(options.position));
  if (options.abbr) RequireFree(league, *options.abbr, position->ID());
  const std::string before = PositionText(*position);
  const auto saved = Save(league, options.abbr.value_or(position->Abbr()),
                          options.desc.value_or(position->Desc()), position->ID());
  PrintSaved(context, *saved, before + " is now " + PositionText(*saved) + ".");
}

void Delete(Context& context, const DeleteOptions& options) {
  League& league = context.OpenLeague();
  const std::string word = JoinedWords(options.who);
  const auto id = WholeNumber(word);
  // The service rejects unknown ids.
  const auto position = id ? AllPositions(league).Find(HLDataSrvc::RecordKey(*id)) : Find(league, word);
  Deletion deletion;
  deletion.type = HLIData::DeleteType::Position;
  deletion.id = position ? position->ID() : *id;
  deletion.text = position ? PositionText(*position) : "position " + word;
  if (position) deletion.usedBy = [&] { return UsesOf(league, deletion.type, deletion.id); };
  const Json json = position ? PositionJson(*position) : Json{{"id", *id}};
  DeleteRecord(context, deletion, options.isSure);
  context.output.Line(context.json ? JsonText(json) : "Deleted " + deletion.text + ".");
  NoteDone(context, "The position was deleted from");
}

}  // namespace

void AddPositionRecordCommands(Command& position) {
  Command add = position.AddCommand("add", "Add a position");
  auto addOptions = std::make_shared<AddOptions>();
  add.AddArgument("SHORT", addOptions->abbr, "short name, such as QB").Required();
  add.AddArgument("NAME", addOptions->desc, "name, such as Quarterback").Required();
  add.Runs(Add, addOptions);

  Command edit = position.AddCommand("edit", "Change a position's names");
  auto editOptions = std::make_shared<EditOptions>();
  edit.AddArgument("POSITION", editOptions->position, "short name, name, or id").Required();
  edit.AddOption("--short", "SHORT", editOptions->abbr, "short name");
  edit.AddOption("--name", "NAME", editOptions->desc, "name");
  edit.Runs(Edit, editOptions);

  AddDeleteCommand(position, "Delete a position that no player and no team has", "POSITION", Delete);
}

}  // namespace cli
