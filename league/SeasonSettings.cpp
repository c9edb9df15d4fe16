#include "HLLeague/SeasonSettings.h"

#include <algorithm>
#include <limits>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Locks.h"
#include "HLLeague/Seasons.h"
#include "league/Numbers.h"
#include "storage/Schema.h"

namespace HLLeague {
namespace {

using HLIData::ISeasonInfo;

// Far more than any league needs: they keep a slip of the finger from making millions of picks.
constexpr std::int32_t kMostManagers = 100;
constexpr std::int32_t kMostRounds = 100;
constexpr std::int32_t kMostWeeks = 100;

constexpr const char* kNumberOfManagers = "The number of managers";

void CheckYear(League& league, const ISeasonInfo& season, std::int32_t year) {
  RequireInRange("The year", year, kFirstYear, kLastYear);
  for (const auto& other : SeasonsOfYear(league, year)) {
    if (other->ID() == season.ID()) continue;
    throw Failure(FailureKind::Refused, "There is a season " + std::to_string(year) +
                                            " already, with the id " + std::to_string(other->ID()) + ".");
  }
}

/// The number of the last pick that is stored for a season, and how many are.
struct PicksMade {
  std::int32_t last = 0;
  std::int32_t count = 0;
};

/// Those of the current season.
PicksMade PicksStored(DraftSession& draft) {
  PicksMade made;
  const Picks& picks = draft.Stored();
  for (std::size_t i = 0; i < picks.size(); ++i) {
    if (picks[i].IsEmpty()) continue;
    made.last = static_cast<std::int32_t>(i) + 1;
    ++made.count;
  }
  for (const MisfitPick& misfit : draft.Misfits()) {
    if (misfit.number < 1 || misfit.number > std::ssize(picks)) ++made.count;
    made.last = std::max(made.last, misfit.number);
  }
  return made;
}

/// The picks stand under their numbers: a round of another length would give them to other rounds, and a
/// stored pick beyond the end does not fit any more.
void CheckDraftSize(DraftSession& draft, const ISeasonInfo& season, std::int32_t managers,
                    std::int32_t rounds) {
  const PicksMade made = PicksStored(draft);
  const std::int64_t size = std::int64_t{season.NoOfManagers()} * season.NoOfRounds();
  // The picks of a season without a draft size have no rounds yet: only the new size has to hold them.
  const bool hasSize =
      season.NoOfManagers() > 0 && season.NoOfRounds() > 0 && size <= HLDataSrvc::Schema::Draft::kMostPicks;
  const std::string picks = CountOf(made.count, "pick") + (made.count == 1 ? " is" : " are") + " made";
  const std::string hint = "'draft clear' empties the draft.";
  if (hasSize && made.count > 0 && managers != season.NoOfManagers()) {
    throw Failure(FailureKind::Refused,
                  std::string(kNumberOfManagers) + " cannot be changed: " + picks + " already.", hint);
  }
  if (made.last > managers * rounds && (!hasSize || managers * rounds < size)) {
    throw Failure(FailureKind::Refused,
                  "The number of rounds cannot be " + std::to_string(rounds) + ": " + picks +
                      ", up to pick " + std::to_string(made.last) + ".",
                  hint);
  }
}

void CheckDraft(DraftSession& draft, const ISeasonInfo& season, const SeasonSettings& settings) {
  const std::int32_t managers = settings.managers.value_or(season.NoOfManagers());
  const std::int32_t rounds = settings.rounds.value_or(season.NoOfRounds());
  const bool changesManagers = managers != season.NoOfManagers();
  if (!settings.managers && !settings.rounds) return;
  // A season is made with 0 of both; the one that is not set yet may wait.
  RequireInRange(kNumberOfManagers, managers, settings.managers ? 1 : 0, kMostManagers);
  RequireInRange("The number of rounds", rounds, settings.rounds ? 1 : 0, kMostRounds);
  if (!changesManagers && rounds == season.NoOfRounds()) return;
  if (changesManagers) RequireRankingUnlocked(season);
  RequireDraftUnlocked(season);
  CheckDraftSize(draft, season, managers, rounds);
  const std::int32_t playing = ManagersOf(season).Count();
  if (changesManagers && managers < playing) {
    throw Failure(FailureKind::Refused,
                  std::string(kNumberOfManagers) + " cannot be " + std::to_string(managers) + ": " +
                      std::to_string(playing) + " take part.",
                  "'manager leave' takes managers out.");
  }
}

void CheckWeeks(const ISeasonInfo& season, const SeasonSettings& settings) {
  if (!settings.weeks && !settings.regularWeeks) return;
  if (settings.regularWeeks)
    RequireInRange("The number of regular weeks", *settings.regularWeeks, 1, kMostWeeks);
  if (settings.weeks) RequireInRange("The number of weeks", *settings.weeks, 1, kMostWeeks);
  const std::int32_t weeks = settings.weeks.value_or(season.TotalNoOfWeeks());
  const std::int32_t regularWeeks = settings.regularWeeks.value_or(season.NoOfRegularWeeks());
  if (weeks < regularWeeks) {
    throw Failure(
        FailureKind::Refused,
        CountOf(weeks, "week") + " cannot have " + CountOf(regularWeeks, "regular week") + ".",
        "'season set --regular-weeks N --weeks N' sets both; the regular ones count among the weeks.");
  }
  std::int32_t lastWon = 0;
  for (const auto& winning : WinningsOf(season))
    lastWon = std::max(lastWon, winning->Week());
  if (settings.weeks && weeks < lastWon && weeks < season.TotalNoOfWeeks()) {
    throw Failure(FailureKind::Refused, "The number of weeks cannot be " + std::to_string(weeks) +
                                            ": there are winnings up to week " + std::to_string(lastWon) +
                                            ".");
  }
}

void Check(DraftSession& draft, const ISeasonInfo& season, const SeasonSettings& settings) {
  const bool unlocks = settings.isLocked && !*settings.isLocked;
  if (!unlocks) RequireSeasonUnlocked(season, "its settings");
  if (settings.year) CheckYear(draft.GetLeague(), season, *settings.year);
  CheckDraft(draft, season, settings);
  if (settings.contribution) {
    RequireInRange("The contribution", *settings.contribution, 0, std::numeric_limits<std::int32_t>::max());
  }
  CheckWeeks(season, settings);
  PrizesOf(season);  // they are written with the settings
}

void Apply(ISeasonInfo& season, const SeasonSettings& settings) {
  if (settings.year) season.Year(*settings.year);
  if (settings.managers) season.NoOfManagers(*settings.managers);
  if (settings.rounds) season.NoOfRounds(*settings.rounds);
  if (settings.contribution) season.MoneyContribution(*settings.contribution);
  if (settings.regularWeeks) season.NoOfRegularWeeks(*settings.regularWeeks);
  if (settings.weeks) season.TotalNoOfWeeks(*settings.weeks);
  if (settings.hasStarted) season.HasSeasonStarted(*settings.hasStarted);
  if (settings.isLocked) season.IsSeasonLocked(*settings.isLocked);
}

}  // namespace

bool SeasonSettings::IsEmpty() const {
  return !year && !managers && !rounds && !contribution && !regularWeeks && !weeks && !hasStarted &&
         !isLocked;
}

void ChangeSeason(DraftSession& draft, const SeasonSettings& settings) {
  if (settings.IsEmpty()) {
    throw Failure(FailureKind::WrongUsage, "Say what to set.",
                  "'season set --help' lists what a season has.");
  }
  League& league = draft.GetLeague();
  draft.RefuseUnsaved("season set");
  const auto season = CurrentSeason(league);
  Check(draft, *season, settings);
  ChangeAndSave(league, "The season's settings", [&] {
    Apply(*season, settings);
    return league.Service().SaveCurrentSeasonInfo();
  });
}

}  // namespace HLLeague
