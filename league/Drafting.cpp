#include "HLLeague/Drafting.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/DraftOrder.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/Players.h"

namespace HLLeague {
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

std::vector<ChangedPick> ChangesSince(const Picks& before, DraftSession& session,
                                      const std::vector<std::int32_t>& numbers) {
  std::vector<ChangedPick> changed;
  for (const std::int32_t number : numbers) {
    const auto index = static_cast<std::size_t>(number) - 1;
    changed.push_back({number, before[index], session.Current()[index]});
  }
  return changed;
}

}  // namespace

void RequirePicksUnlocked(DraftSession& session, const std::vector<std::int32_t>& numbers) {
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

std::vector<std::int32_t> FilledPicks(const Picks& picks) {
  return DifferingPicks(picks, Picks(picks.size()));
}

ChangedPick FillPick(DraftSession& session, const WantedPick& wanted) {
  HLIData::ISeasonInfo& season = session.Season();
  RequirePicksUnlocked(
      session, wanted.number ? std::vector<std::int32_t>{*wanted.number} : std::vector<std::int32_t>());
  const DraftOrder order(season);
  order.RequireSettled();
  if (!wanted.number) session.RequireWhole();
  const std::int32_t number = PickToFill(order, session.Current(), wanted.number);
  const auto manager = wanted.manager.empty() ? order.ManagerOn(number) : FindManager(season, wanted.manager);
  const auto what = FindPickable(session.GetLeague(), wanted.words,
                                 [&](const auto& one) { return TakenText(season, one); });
  RequireSound(*what);
  const Pick pick = MakePick(what, *manager);
  RequireFree(session, number, pick);
  const Pick before = session.Current()[static_cast<std::size_t>(number) - 1];
  session.Change({{number, pick}});
  return {number, before, pick};
}

std::vector<ChangedPick> EmptyPicks(DraftSession& session, const std::vector<std::int32_t>& numbers) {
  RequirePicksUnlocked(session, numbers);
  const DraftOrder order(session.Season());
  const Picks before = session.Current();
  Changes changes;
  for (const std::int32_t number : numbers) {
    order.RequirePick(number);
    if (before[static_cast<std::size_t>(number) - 1].IsEmpty())
      throw Failure(FailureKind::Refused, "Pick " + std::to_string(number) + " is empty already.");
    changes.emplace_back(number, Pick());
  }
  session.Change(changes);
  return ChangesSince(before, session, numbers);
}

std::vector<ChangedPick> UndoLast(DraftSession& session) {
  RequirePicksUnlocked(session, {});
  session.RequireWhole();
  const Picks before = session.Current();
  const std::vector<std::int32_t> numbers = session.TakeBack();
  if (!numbers.empty()) return ChangesSince(before, session, numbers);
  const std::vector<std::int32_t> filled = FilledPicks(before);
  if (filled.empty()) throw Failure(FailureKind::Refused, "There is no pick to undo: the draft is empty.");
  return EmptyPicks(session, {filled.back()});
}

std::vector<std::int32_t> DeletePicksOutside(DraftSession& session,
                                             const std::vector<std::int32_t>& numbers) {
  RequirePicksUnlocked(session, numbers);
  std::vector<std::int32_t> outside;
  for (const MisfitPick& misfit : session.Misfits()) {
    const bool isMeant = numbers.empty() || std::count(numbers.begin(), numbers.end(), misfit.number) > 0;
    if (isMeant && IsOutside(session, misfit)) outside.push_back(misfit.number);
  }
  if (outside.empty()) return outside;
  session.RefuseUnsaved("draft clear");
  League& league = session.GetLeague();
  league.Transact("The draft could not be saved.", [&] {
    for (const std::int32_t number : outside)
      HLDataSrvc::DeleteRows(league.Service(), SelectPick(session.Season(), number));
  });
  league.Service().DiscardCurrentSeasonInfo();
  return outside;
}

}  // namespace HLLeague
