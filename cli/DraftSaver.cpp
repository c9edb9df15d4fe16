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
  throw Failure(ExitCode::Refused,
                "The draft has to be written whole, and " + PickNumbers(unwritable) +
                    " cannot be: somebody has made them without picking a player or team.",
                "Fill them with 'draft pick --pick N', or empty them with 'draft undo N'.");
}

/// Lines for a shell that make picks again.
std::string LinesFor(const Picks& picks, const std::vector<std::int32_t>& numbers) {
  std::string lines;
  for (const std::int32_t number : numbers) {
    const Pick& pick = picks[static_cast<std::size_t>(number) - 1];
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

/// What is stored after a failure, and what no longer is.
std::string Account(const Picks& wanted, const Picks& before, const Picks& stored) {
  if (stored == before) return "The file holds the draft that it held before.";
  const auto held = NumbersWhere(wanted, [&](std::size_t i) { return !stored[i].IsEmpty(); });
  const auto missing = NumbersWhere(wanted, [&](std::size_t i) { return stored[i] != wanted[i]; });
  const auto lost =
      NumbersWhere(wanted, [&](std::size_t i) { return before[i].id != 0 && stored[i].IsEmpty(); });
  std::string text = "Stored now: " + PickNumbers(held) + ".";
  if (!missing.empty()) text += "\nNot stored as they should be: " + PickNumbers(missing) + ".";
  if (!lost.empty()) {
    text += "\nStored before and lost now: " + PickNumbers(lost) +
            ". These lines make them again in a shell:" + LinesFor(before, lost);
  }
  return text;
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

  std::string reason = "what is stored is not what was written";
  try {
    if (wipes) Wipe();
    Write(wanted, PicksOf(*CurrentSeason(m_league)));
    if (ReadStored() == wanted) return changed.size();
  } catch (const std::exception& error) {
    reason = error.what();
  }
  RaiseNotSaved(reason, wanted, before);
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

void DraftSaver::RaiseNotSaved(const std::string& reason, const Picks& wanted, const Picks& before) {
  std::string account;
  try {
    account = Account(wanted, before, ReadStored());
  } catch (const std::exception& error) {
    account = std::string("What the file holds now could not be read: ") + error.what();
  }
  throw Failure(ExitCode::Refused, "The draft was not saved: " + reason, account);
}

}  // namespace cli
