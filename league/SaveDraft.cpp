#include "HLLeague/SaveDraft.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/StoredDraft.h"

namespace HLLeague {
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
  throw Failure(FailureKind::Refused,
                "The draft cannot be saved: " + PickNumbers(unwritable) +
                    " would be made without picking a player or team.",
                "'draft pick WHO --pick N' fills a pick.");
}

/// Raises Failure when two picks hold the same player or team: the season could not be loaded whole any more.
void RequireDistinct(const Picks& wanted) {
  std::map<std::pair<HLIData::PickType, std::int32_t>, std::size_t> numbers;
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    if (wanted[i].IsEmpty() || wanted[i].id == 0) continue;
    const auto [earlier, isFirst] = numbers.try_emplace({wanted[i].type, wanted[i].id}, i + 1);
    if (isFirst) continue;
    throw Failure(FailureKind::Refused, "The draft cannot be saved: the picks " +
                                            std::to_string(earlier->second) + " and " +
                                            std::to_string(i + 1) + " are the same.");
  }
}

/// Makes the season in memory the stored one again, and puts wanted picks into it.
void Replay(League& league, const Picks& wanted, const std::vector<std::int32_t>& numbers) {
  league.Service().DiscardCurrentSeasonInfo();
  const auto season = CurrentSeason(league);
  for (const std::int32_t number : numbers)
    season->RemoveDraft(number);  // clear all first: a pick may still hold a player who moves
  for (const std::int32_t number : numbers)
    PutPick(*season, number, wanted[static_cast<std::size_t>(number) - 1]);
}

}  // namespace

void SaveDraft(League& league, const HLIData::ISeasonInfo& season, const Picks& stored, const Picks& wanted,
               bool isWhole) {
  const std::vector<std::int32_t> changed = DifferingPicks(stored, wanted);
  if (changed.empty()) return;
  RequireWritable(wanted, changed);
  if (isWhole) RequireDistinct(wanted);
  league.Transact("The draft could not be saved.", [&] {
    bool deletes = false;
    for (const std::int32_t number : changed) {
      const auto i = static_cast<std::size_t>(number) - 1;
      if (!TakesAway(stored[i], wanted[i])) continue;
      HLDataSrvc::DeleteRows(league.Service(), SelectPick(season, number));
      deletes = true;
    }
    if (deletes) Replay(league, wanted, changed);
    const bool saved = league.Service().SaveDrafts();
    league.RaiseShownMessages();
    if (!saved) throw Failure(FailureKind::Refused, "The service gave no reason.");
  });
}

}  // namespace HLLeague
