#include "cli/commands/DraftPicking.h"

#include <algorithm>
#include <cstddef>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/Players.h"
#include "cli/commands/DraftReport.h"
#include "cli/commands/ExitCode.h"

namespace cli {

using namespace HLLeague;

namespace {

using Changes = std::vector<std::pair<std::int32_t, Pick>>;

/// Honours the locks, which the service leaves to its callers.
void RequireUnlocked(const HLIData::ISeasonInfo& season) {
  RequireSeasonUnlocked(season, "its draft");
  if (season.IsDraftLocked()) {
    throw Failure(FailureKind::Refused, "The draft of the season " + std::to_string(season.Year()) +
                                            " is locked: it cannot be changed.");
  }
}

/// The same for picks that are named. Those that do not fit the season can be mended though the draft is
/// locked.
void RequireUnlocked(DraftSession& session, const std::vector<std::int32_t>& numbers) {
  const auto isMisfit = [&](std::int32_t number) {
    return std::any_of(session.Misfits().begin(), session.Misfits().end(),
                       [&](const MisfitPick& misfit) { return misfit.number == number; });
  };
  if (!numbers.empty() && std::all_of(numbers.begin(), numbers.end(), isMisfit)) {
    RequireSeasonUnlocked(session.Season(), "its draft");
  } else {
    RequireUnlocked(session.Season());
  }
}

/// Outside a shell nothing stays unsaved.
void SaveUnlessInShell(Context& context) {
  if (context.inShell) return;
  context.Draft().Save();
  context.messages.Note("The draft was saved in " + context.TheLeague().Path() + ".");
}

/// Where a player or team stands in the draft already; empty when he does not.
std::string TakenText(HLIData::ISeasonInfo& season, const std::shared_ptr<HLIData::IPickable>& pickable) {
  std::string message;
  if (!season.IsPickableTaken(pickable, message)) return {};
  const std::size_t first = message.find('\t');
  const std::size_t second = message.find('\t', first + 1);
  if (second == std::string::npos) return "taken";
  return "taken in round " + message.substr(0, first) + " by " +
         message.substr(first + 1, second - first - 1);
}

/// The number of the pick that holds what another holds; 0 when none does.
std::int32_t HolderOf(const Picks& picks, const Pick& wanted) {
  const auto holder = std::find_if(picks.begin(), picks.end(), [&](const Pick& pick) {
    return !pick.IsEmpty() && pick.HoldsSameAs(wanted);
  });
  return holder == picks.end() ? 0 : static_cast<std::int32_t>(holder - picks.begin()) + 1;
}

bool IsOutside(DraftSession& session, const MisfitPick& misfit) {
  return misfit.number < 1 || misfit.number > std::ssize(session.Current());
}

void RequireFree(DraftSession& session, std::int32_t number, const Pick& wanted) {
  for (const MisfitPick& misfit : session.Misfits()) {
    if (!IsOutside(session, misfit) || misfit.type != wanted.type || misfit.id != wanted.id) continue;
    const std::string pick = std::to_string(misfit.number);
    throw Failure(FailureKind::Refused,
                  PickableText(FactsOf(*wanted.what)) + " is pick " + pick + ", outside the draft, already.",
                  "'draft clear " + pick + "' deletes that pick.");
  }
  std::string taken = TakenText(session.Season(), wanted.what);
  const std::int32_t holder = HolderOf(session.Current(), wanted);
  if (taken.empty() && holder == 0) return;
  if (taken.empty()) taken = "taken";  // at a stored pick that the season in memory does not have
  // Another manager may get what stands at this very pick.
  if (holder == number && session.Current()[static_cast<std::size_t>(number) - 1] != wanted) return;
  throw Failure(FailureKind::Refused, PickableText(FactsOf(*wanted.what)) + " is " + taken +
                                          (holder == 0 ? "" : ", pick " + std::to_string(holder)) + ".");
}

std::string WhoOf(const std::vector<std::string>& words) {
  std::string who;
  for (const std::string& word : words)
    who += (who.empty() ? "" : " ") + word;
  return who;
}

std::int32_t PickToFill(const DraftOrder& order, const Picks& picks,
                        const std::optional<std::int32_t>& wanted) {
  if (wanted) {
    order.RequirePick(*wanted);
    return *wanted;
  }
  const auto due = FirstEmptyPick(picks);
  if (due) return *due;
  throw Failure(FailureKind::Refused,
                "The draft is complete: all " + CountOfPicks(picks.size()) + " are made.",
                "'draft pick WHO --pick N' replaces a pick.");
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

void EmptyPicks(Context& context, const std::vector<std::int32_t>& numbers) {
  DraftSession& session = context.Draft();
  DraftReport report(session);
  Changes changes;
  std::vector<std::string> lines;
  for (const std::int32_t number : numbers) {
    report.Order().RequirePick(number);
    const Pick& pick = session.Current()[static_cast<std::size_t>(number) - 1];
    if (pick.IsEmpty())
      throw Failure(FailureKind::Refused, "Pick " + std::to_string(number) + " is empty already.");
    lines.push_back(EmptiedText(report, number, pick));
    changes.emplace_back(number, Pick());
  }
  session.Change(changes);
  SaveUnlessInShell(context);
  DraftReport(session).PrintChange(context, numbers, lines);
}

std::vector<std::int32_t> FilledPicks(const Picks& picks) {
  return DifferingPicks(picks, Picks(picks.size()));
}

/// Deletes stored picks whose numbers lie outside the draft; returns them. `numbers`: only these, if any.
std::vector<std::int32_t> DeleteOutside(Context& context, const std::vector<std::int32_t>& numbers) {
  League& league = context.TheLeague();
  DraftSession& session = context.Draft();
  std::vector<std::int32_t> outside;
  for (const MisfitPick& misfit : session.Misfits()) {
    const bool isMeant = numbers.empty() || std::count(numbers.begin(), numbers.end(), misfit.number) > 0;
    if (isMeant && IsOutside(session, misfit)) outside.push_back(misfit.number);
  }
  if (outside.empty()) return outside;
  context.Draft().RefuseUnsaved("draft clear");
  league.Transact("The draft could not be saved.", [&] {
    for (const std::int32_t number : outside)
      HLDataSrvc::DeleteRows(league.Service(), SelectPick(session.Season(), number));
  });
  league.Service().DiscardCurrentSeasonInfo();
  context.messages.Note("Deleted " + PickNumbers(outside) + ", outside the draft, from " + league.Path() +
                        ".");
  return outside;
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
  Changes changes;
  for (const std::int32_t number : filled)
    changes.emplace_back(number, Pick());
  if (!filled.empty()) session.Change(changes);
  SaveUnlessInShell(context);
  DraftReport(session).PrintChange(
      context, filled,
      {filled.empty() ? "The draft is empty already." : "Emptied " + PickNumbers(filled) + "."});
}

}  // namespace

void DraftPick(Context& context, const DraftPickOptions& options) {
  League& league = context.TheLeague();
  DraftSession& session = context.Draft();
  HLIData::ISeasonInfo& season = session.Season();
  RequireUnlocked(session,
                  options.pick ? std::vector<std::int32_t>{*options.pick} : std::vector<std::int32_t>());
  DraftReport report(session);
  report.Order().RequireSettled();
  if (!options.pick) session.RequireWhole();
  const std::int32_t number = PickToFill(report.Order(), session.Current(), options.pick);
  const auto manager =
      options.manager.empty() ? report.Order().ManagerOn(number) : FindManager(season, options.manager);
  PickableWords words = options.words;
  words.who = WhoOf(options.who);
  const auto what = FindPickable(league, words, [&](const auto& one) { return TakenText(season, one); });
  RequireSound(*what);
  const Pick pick = MakePick(what, *manager);
  RequireFree(session, number, pick);

  const Pick before = session.Current()[static_cast<std::size_t>(number) - 1];
  session.Change({{number, pick}});
  SaveUnlessInShell(context);
  DraftReport after(session);
  std::string turn = after.TurnText(number);
  turn[0] = 'P';
  after.PrintChange(context, {number},
                    {turn + ": " + after.ManagerText(manager->ID()) + " takes " + after.HeldText(pick) +
                     (before.IsEmpty() ? "." : " instead of " + after.HeldText(before) + ".")});
}

void DraftUndo(Context& context, const std::optional<std::int32_t>& number) {
  DraftSession& session = context.Draft();
  RequireUnlocked(session, number ? std::vector<std::int32_t>{*number} : std::vector<std::int32_t>());
  if (number) return DraftClear(context, {*number}, /*isSure=*/true);
  session.RequireWhole();
  const Picks before = session.Current();
  const std::vector<std::int32_t> numbers = session.TakeBack();
  if (numbers.empty()) {
    const std::vector<std::int32_t> filled = FilledPicks(before);
    if (filled.empty()) throw Failure(FailureKind::Refused, "There is no pick to undo: the draft is empty.");
    return EmptyPicks(context, {filled.back()});
  }
  SaveUnlessInShell(context);
  DraftReport report(session);
  std::vector<std::string> lines;
  for (const std::int32_t changed : numbers) {
    const auto index = static_cast<std::size_t>(changed) - 1;
    lines.push_back(RestoredText(report, changed, before[index], session.Current()[index]));
  }
  report.PrintChange(context, numbers, lines);
}

void DraftClear(Context& context, const std::vector<std::int32_t>& numbers, bool isSure) {
  RequireUnlocked(context.Draft(), numbers);
  if (numbers.empty()) {
    ClearAll(context, isSure);
    return;
  }
  std::vector<std::int32_t> once = numbers;
  std::sort(once.begin(), once.end());
  once.erase(std::unique(once.begin(), once.end()), once.end());
  const std::vector<std::int32_t> deleted = DeleteOutside(context, once);
  once.erase(std::remove_if(once.begin(), once.end(),
                            [&](std::int32_t number) {
                              return std::find(deleted.begin(), deleted.end(), number) != deleted.end();
                            }),
             once.end());
  if (!once.empty() || deleted.empty()) {
    EmptyPicks(context, once);
  } else {
    DraftReport(context.Draft()).PrintChange(context, {}, {"Deleted " + PickNumbers(deleted) + "."});
  }
}

void DraftSave(Context& context) {
  League& league = context.TheLeague();
  DraftSession& session = context.Draft();
  RequireUnlocked(session.Season());
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
