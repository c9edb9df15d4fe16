#include "cli/commands/DraftPicking.h"

#include <algorithm>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Drafting.h"
#include "HLLeague/League.h"
#include "cli/commands/DraftReport.h"
#include "cli/commands/RecordCommands.h"

namespace cli {

using namespace HLLeague;

namespace {

/// Outside a shell nothing stays unsaved.
void SaveUnlessInShell(Context& context) {
  if (context.inShell) return;
  context.Draft().Save();
  context.messages.Note("The draft was saved in " + context.OpenLeague().Path() + ".");
}

std::string EmptiedText(const DraftReport& report, std::int32_t number, const Pick& before) {
  return "Emptied " + report.TurnText(number) + ": " + report.ManagerText(*before.managerID) + " had " +
         report.HeldText(before) + ".";
}

/// What has become of a pick that was changed back.
std::string RestoredText(const DraftReport& report, std::int32_t number, const Pick& before,
                         const Pick& now) {
  if (now.IsEmpty()) return EmptiedText(report, number, before);
  return "Restored " + report.TurnText(number) + ": " + report.ManagerText(*now.managerID) + " has " +
         report.HeldText(now) +
         (before.IsEmpty() ? "." : " again, instead of " + report.HeldText(before) + ".");
}

/// Saves what was changed, unless in a shell, and prints it.
void SaveAndPrint(Context& context, const std::vector<ChangedPick>& changed) {
  SaveUnlessInShell(context);
  DraftReport report(context.Draft());
  std::vector<std::int32_t> numbers;
  std::vector<std::string> lines;
  for (const ChangedPick& change : changed) {
    numbers.push_back(change.number);
    lines.push_back(RestoredText(report, change.number, change.before, change.now));
  }
  report.PrintChange(context, numbers, lines);
}

std::vector<std::int32_t> DeleteOutside(Context& context, const std::vector<std::int32_t>& numbers) {
  const std::vector<std::int32_t> deleted = DeletePicksOutside(context.Draft(), numbers);
  if (!deleted.empty()) {
    context.messages.Note("Deleted " + PickNumbers(deleted) + ", outside the draft, from " +
                          context.OpenLeague().Path() + ".");
  }
  return deleted;
}

void ClearAll(Context& context, bool isSure) {
  DraftSession& session = context.Draft();
  const std::vector<std::int32_t> filled = FilledPicks(session.Current());
  const std::string draft = "the draft " + std::to_string(session.Season().Year());
  const std::string count = CountOfPicks(filled.size());
  if (!filled.empty() && !isSure && !context.Confirm("Empty " + draft + ", " + count + "?")) {
    throw Failure(FailureKind::Refused, "The draft was not cleared.",
                  context.canAsk ? "" : "Use --yes to clear all " + count + ".");
  }
  if (!context.inShell) DeleteOutside(context, {});  // in a shell nothing is deleted before 'draft save'
  if (!filled.empty()) EmptyPicks(session, filled);
  SaveUnlessInShell(context);
  DraftReport(session).PrintChange(
      context, filled,
      {filled.empty() ? "The draft is empty already." : "Emptied " + PickNumbers(filled) + "."});
}

}  // namespace

void DraftPick(Context& context, const DraftPickOptions& options) {
  WantedPick wanted{options.words, options.pick, options.manager};
  wanted.words.who = JoinedWords(options.who);
  const ChangedPick change = FillPick(context.Draft(), wanted);
  SaveUnlessInShell(context);
  DraftReport report(context.Draft());
  std::string turn = report.TurnText(change.number);
  turn[0] = 'P';
  report.PrintChange(
      context, {change.number},
      {turn + ": " + report.ManagerText(*change.now.managerID) + " takes " + report.HeldText(change.now) +
       (change.before.IsEmpty() ? "." : " instead of " + report.HeldText(change.before) + ".")});
}

void DraftUndo(Context& context, const std::optional<std::int32_t>& number) {
  if (number) return DraftClear(context, {*number}, /*isSure=*/true);
  SaveAndPrint(context, UndoLast(context.Draft()));
}

void DraftClear(Context& context, const std::vector<std::int32_t>& numbers, bool isSure) {
  RequirePicksUnlocked(context.Draft(), numbers);
  if (numbers.empty()) {
    ClearAll(context, isSure);
    return;
  }
  std::vector<std::int32_t> once = numbers;
  std::sort(once.begin(), once.end());
  once.erase(std::unique(once.begin(), once.end()), once.end());
  const std::vector<std::int32_t> deleted = DeleteOutside(context, once);
  std::erase_if(once, [&](std::int32_t number) {
    return std::find(deleted.begin(), deleted.end(), number) != deleted.end();
  });
  if (!once.empty() || deleted.empty()) {
    SaveAndPrint(context, EmptyPicks(context.Draft(), once));
  } else {
    DraftReport(context.Draft()).PrintChange(context, {}, {"Deleted " + PickNumbers(deleted) + "."});
  }
}

void DraftSave(Context& context) {
  League& league = context.OpenLeague();
  DraftSession& session = context.Draft();
  RequirePicksUnlocked(session, {});
  const std::vector<std::int32_t> unsaved = session.Unsaved();
  if (!unsaved.empty()) {
    try {
      session.Save();
    } catch (const Failure& failure) {
      throw Failure(failure.Kind(), failure.what(),
                    failure.Hint() + "\nAll picks are kept in this shell; 'draft save' tries again.");
    }
    context.messages.Note("The draft was saved in " + league.Path() + ".");
  }
  DraftReport(session).PrintChange(
      context, unsaved,
      {unsaved.empty() ? "There is nothing to save." : "Saved " + PickNumbers(unsaved) + "."});
}

void DraftRevert(Context& context) {
  DraftSession& session = context.Draft();
  const std::vector<std::int32_t> unsaved = session.Unsaved();
  session.Revert();
  DraftReport(session).PrintChange(
      context, unsaved,
      {unsaved.empty() ? "There is nothing to revert."
                       : "Back to what is stored: " + PickNumbers(unsaved) + "."});
}

}  // namespace cli
