#include "cli/DraftSaver.h"

#include <algorithm>
#include <exception>
#include <set>
#include <utility>
#include <vector>

#include "cli/ExitCode.h"
#include "cli/Find.h"

namespace cli {
namespace {

using HLIData::PickType;

bool IsPlayer(const Pick& pick) {
  return pick.type == PickType::Player;
}

/// Whether the row of a stored pick would have to go, or to lose something, to become the wanted one.
bool TakesAway(const Pick& stored, const Pick& wanted) {
  if (stored.IsEmpty()) return false;
  if (wanted.IsEmpty()) return true;
  return stored.HoldsSameAs(wanted) || (stored.id != 0 && stored.type != wanted.type);
}

/// Whether the draft has to be deleted and written whole. Also when somebody moves from one pick to another:
/// stored half, he would stand at both, and the season could not be loaded any more.
bool NeedsWiping(const Picks& stored, const Picks& wanted, const std::vector<std::int32_t>& changed) {
  std::set<std::pair<PickType, std::int32_t>> leaving;
  for (const std::int32_t number : changed) {
    const auto i = static_cast<std::size_t>(number) - 1;
    if (TakesAway(stored[i], wanted[i])) return true;
    if (stored[i].id != 0) leaving.emplace(stored[i].type, stored[i].id);
  }
  return std::any_of(changed.begin(), changed.end(), [&](std::int32_t number) {
    const Pick& pick = wanted[static_cast<std::size_t>(number) - 1];
    return leaving.count({pick.type, pick.id}) > 0;
  });
}

/// The picks that would have to be written, but hold nothing that can be.
std::vector<std::int32_t> UnwritablePicks(const Picks& wanted, const std::vector<std::int32_t>& numbers) {
  std::vector<std::int32_t> unwritable;
  for (const std::int32_t number : numbers) {
    const Pick& pick = wanted[static_cast<std::size_t>(number) - 1];
    if (!pick.IsEmpty() && !pick.what) unwritable.push_back(number);
  }
  return unwritable;
}

void RequireWritable(const Picks& wanted, const std::vector<std::int32_t>& numbers) {
  const std::vector<std::int32_t> unwritable = UnwritablePicks(wanted, numbers);
  if (unwritable.empty()) return;
  std::string list;
  for (const std::int32_t number : unwritable)
    list += " " + std::to_string(number);
  throw Failure(
      ExitCode::Refused,
      "The draft has to be written whole, and " + PickNumbers(unwritable) +
          " cannot be: somebody has made them without picking a player or team.",
      "Empty them at once with 'draft clear" + list + "', or fill each with 'draft pick --pick N'.");
}

/// Lines for a shell that make those of the picks that are filled.
std::string LinesFor(const Picks& picks, const std::vector<std::int32_t>& numbers) {
  std::string lines;
  for (const std::int32_t number : numbers) {
    const Pick& pick = picks[static_cast<std::size_t>(number) - 1];
    if (!pick.what) continue;
    lines += "\n  draft pick " + std::string(IsPlayer(pick) ? "P" : "T") + std::to_string(pick.id) +
             " --pick " + std::to_string(number) + " --manager " + std::to_string(*pick.managerID);
  }
  return lines;
}

std::vector<std::int32_t> NumbersWhere(const Picks& picks, const auto& condition) {
  std::vector<std::int32_t> numbers;
  for (std::size_t i = 0; i < picks.size(); ++i) {
    if (condition(i)) numbers.push_back(static_cast<std::int32_t>(i) + 1);
  }
  return numbers;
}

/// What is stored after a failure, and what is not.
std::string Account(const Picks& wanted, const Picks& before, const Picks& stored) {
  if (stored == before) return "The file holds the draft that it held before.";
  const auto held = NumbersWhere(wanted, [&](std::size_t i) { return !stored[i].IsEmpty(); });
  const std::vector<std::int32_t> missing = DifferingPicks(stored, wanted);
  std::string text = "Stored now: " + PickNumbers(held) + ".";
  if (missing.empty()) return text;
  text += "\nNot stored as it should be: " + PickNumbers(missing) + ".";
  const std::string lines = LinesFor(wanted, missing);
  return lines.empty() ? text : text + " In a shell these lines make what is missing:" + lines;
}

[[noreturn]] void RaiseNotSaved(const std::string& reason, const std::string& account) {
  throw Failure(ExitCode::Refused, "The draft could not be saved: " + reason, account);
}

}  // namespace

Picks DraftSaver::ReadStored() {
  m_league.Service().DiscardCurrentSeasonInfo();
  return PicksOf(*CurrentSeason(m_league));
}

std::size_t DraftSaver::Save(const Picks& wanted) {
  const Picks before = ReadStored();
  if (before.size() != wanted.size()) {
    throw Failure(ExitCode::Refused, "The draft has " + CountOfPicks(before.size()) + " by now, not " +
                                         std::to_string(wanted.size()) + ".");
  }
  std::vector<std::int32_t> changed = DifferingPicks(before, wanted);
  if (changed.empty()) return 0;
  const bool wipes = NeedsWiping(before, wanted, changed);
  if (wipes) changed = NumbersWhere(wanted, [&](std::size_t i) { return !wanted[i].IsEmpty(); });
  RequireWritable(wanted, changed);

  std::string reason;
  try {
    if (wipes) Wipe();
    Write(wanted, PicksOf(*CurrentSeason(m_league)));
  } catch (const std::exception& error) {
    reason = error.what();
  }
  RequireStored(wanted, before, reason);
  return changed.size();
}

void DraftSaver::Wipe() {
  const bool deleted = m_league.Service().DeleteDrafts();
  m_league.RaiseShownMessages();
  if (!deleted) throw Failure(ExitCode::Refused, "the service could not delete the stored draft");
}

void DraftSaver::Write(const Picks& wanted, const Picks& stored) {
  const auto season = CurrentSeason(m_league);
  const std::vector<std::int32_t> changed = DifferingPicks(stored, wanted);
  for (const std::int32_t number : changed)
    season->RemoveDraft(number);  // all first, so that nobody is in the way
  for (const std::int32_t number : changed)
    PutPick(*season, number, wanted[static_cast<std::size_t>(number) - 1]);
  const bool saved = m_league.Service().SaveDrafts();
  m_league.RaiseShownMessages();
  if (!saved) throw Failure(ExitCode::Refused, "the service could not save the draft");
}

void DraftSaver::RequireStored(const Picks& wanted, const Picks& before, const std::string& reason) {
  Picks stored;
  try {
    stored = ReadStored();
  } catch (const std::exception& error) {
    if (reason.empty())
      RaiseNotSaved("it was written, but could not be read again: " + std::string(error.what()), {});
    RaiseNotSaved(reason, std::string("What the file holds now could not be read: ") + error.what());
  }
  if (stored == wanted) return;
  RaiseNotSaved(reason.empty() ? "what is stored is not what was written" : reason,
                Account(wanted, before, stored));
}

}  // namespace cli
