#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLLeague/Find.h"
#include "HLLeague/MasterRecords.h"
#include "HLLeague/RecordUses.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/RecordCommands.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/Utf8.h"
#include "storage/Schema.h"

namespace cli {

using namespace HLLeague;

namespace {

namespace Schema = HLDataSrvc::Schema;
using Manager = HLIData::IManagerTmplInfo;

std::string ManagerText(const Manager& manager) {
  return Printable(FullName(manager)) + " (" + std::to_string(manager.ID()) + ")";
}

Json ManagerJson(const Manager& manager) {
  Json json;
  json["id"] = manager.ID();
  json["firstName"] = manager.FirstName();
  json["lastName"] = manager.LastName();
  return json;
}

std::shared_ptr<Manager> Save(League& league, const std::string& firstName, const std::string& lastName,
                              std::int32_t id) {
  RequireFits(league, Schema::Manager::kTable, Schema::Manager::kFirstName, "first name", firstName);
  RequireFits(league, Schema::Manager::kTable, Schema::Manager::kLastName, "last name", lastName);
  std::shared_ptr<Manager> saved;
  SaveRecord(league, "The manager", [&](std::string& message) {
    return league.Service().UpdateManager(lastName, firstName, id, saved, message);
  });
  return saved;
}

void PrintSaved(Context& context, const Manager& manager, const std::string& sentence) {
  context.output.Line(context.json ? JsonText(ManagerJson(manager)) : sentence);
  NoteDone(context, "The manager was saved in");
}

struct AddOptions {
  std::string firstName;
  std::string lastName;
};

void Add(Context& context, const AddOptions& options) {
  League& league = context.OpenLeague();
  const auto manager = Save(league, options.firstName, options.lastName, 0);
  PrintSaved(context, *manager, "Added " + ManagerText(*manager) + ".");
  for (const auto& other : AllManagers(league)) {
    if (other->ID() == manager->ID() || LowerCase(FullName(*other)) != LowerCase(FullName(*manager)))
      continue;
    context.messages.Note("There is " + ManagerText(*other) + " too. 'manager delete " +
                          std::to_string(manager->ID()) + "' takes back what was added.");
    return;
  }
}

struct EditOptions {
  std::vector<std::string> who;
  std::optional<std::string> firstName;
  std::optional<std::string> lastName;
};

void Edit(Context& context, const EditOptions& options) {
  if (!options.firstName && !options.lastName)
    throw Failure(FailureKind::WrongUsage, "Say what to change.", "--first and --last change the names.");
  League& league = context.OpenLeague();
  const auto manager = FindManagerTmpl(league, JoinedWords(options.who));
  const std::string before = ManagerText(*manager);
  const auto saved = Save(league, options.firstName.value_or(manager->FirstName()),
                          options.lastName.value_or(manager->LastName()), manager->ID());
  PrintSaved(context, *saved, before + " is now " + ManagerText(*saved) + ".");
}

void Delete(Context& context, const DeleteOptions& options) {
  League& league = context.OpenLeague();
  const std::string who = JoinedWords(options.who);
  const auto id = WholeNumber(who);
  std::shared_ptr<Manager> manager;
  if (id) {  // the service rejects unknown ids
    const auto managers = AllManagers(league);
    const auto found =
        std::find_if(managers.begin(), managers.end(), [&](const auto& one) { return one->ID() == *id; });
    if (found != managers.end()) manager = *found;
  } else {
    manager = FindManagerTmpl(league, who);
  }
  Deletion deletion;
  deletion.type = HLIData::DeleteType::Manager;
  deletion.id = manager ? manager->ID() : *id;
  deletion.text = manager ? ManagerText(*manager) : "manager " + who;
  if (manager) deletion.usedBy = [&] { return UsesOf(league, deletion.type, deletion.id); };
  const Json json = manager ? ManagerJson(*manager) : Json{{"id", *id}};
  DeleteRecord(context, deletion, options.isSure);
  context.output.Line(context.json ? JsonText(json) : "Deleted " + deletion.text + ".");
  NoteDone(context, "The manager was deleted from");
}

}  // namespace

void AddManagerRecordCommands(Command& manager) {
  Command add = manager.AddCommand("add", "Add a manager to the league; 'join' lets him take part");
  auto addOptions = std::make_shared<AddOptions>();
  add.AddArgument("FIRST", addOptions->firstName, "first name").Required();
  add.AddArgument("LAST", addOptions->lastName, "last name").Required();
  add.Runs(Add, addOptions);

  Command edit = manager.AddCommand("edit", "Change the names of a manager");
  auto editOptions = std::make_shared<EditOptions>();
  edit.AddArgument("WHO", editOptions->who, "last name, full name, or id").Required();
  edit.AddOption("--first", "NAME", editOptions->firstName, "first name");
  edit.AddOption("--last", "NAME", editOptions->lastName, "last name");
  edit.Runs(Edit, editOptions);

  AddDeleteCommand(manager, "Delete a manager who has had no part in any season", "WHO", Delete);
}

}  // namespace cli
