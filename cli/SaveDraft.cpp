#include "cli/SaveDraft.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "cli/ExitCode.h"
#include "cli/Find.h"

namespace cli {
namespace {

/// Whether the row of a stored pick would have to go, or to lose something, to become the wanted one.
bool TakesAway(const Pick& stored, const Pick& wanted) {
  if (stored.IsEmpty()) return false;
  if (wanted.IsEmpty()) return true;
  return stored.HoldsSameAs(wanted) || (stored.id != 0 && stored.type != wanted.type);
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

std::vector<std::int32_t> NumbersWhere(const Picks& picks, const auto& condition) {
  std::vector<std::int32_t> numbers;
  for (std::size_t i = 0; i < picks.size(); ++i) {
    if (condition(i)) numbers.push_back(static_cast<std::int32_t>(i) + 1);
  }
  return numbers;
}

/// Puts wanted picks into the current season, whose draft is empty.
void Fill(League& league, const Picks& wanted, const std::vector<std::int32_t>& numbers) {
  const auto season = CurrentSeason(league);
  for (const std::int32_t number : numbers)
    PutPick(*season, number, wanted[static_cast<std::size_t>(number) - 1]);
}

}  // namespace

void SaveDraft(League& league, const Picks& stored, const Picks& wanted) {
  std::vector<std::int32_t> changed = DifferingPicks(stored, wanted);
  if (changed.empty()) return;
  const bool rewrites = std::any_of(changed.begin(), changed.end(), [&](std::int32_t number) {
    const auto i = static_cast<std::size_t>(number) - 1;
    return TakesAway(stored[i], wanted[i]);
  });
  if (rewrites) changed = NumbersWhere(wanted, [&](std::size_t i) { return !wanted[i].IsEmpty(); });
  RequireWritable(wanted, changed);
  const auto require = [&league](bool done) {
    league.RaiseShownMessages();
    if (!done) throw Failure(ExitCode::Refused, "The service has not said why.");
  };
  league.Transact("The draft could not be saved.", [&] {
    if (rewrites) {
      require(league.Service().DeleteDrafts());
      Fill(league, wanted, changed);
    }
    require(league.Service().SaveDrafts());
  });
}

}  // namespace cli
