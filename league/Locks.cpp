#include "HLLeague/Locks.h"

#include <string>

#include "HLLeague/Failure.h"

namespace HLLeague {
namespace {

[[noreturn]] void RaiseLocked(const std::string& lock, const HLIData::ISeasonInfo& season,
                              const std::string& what, const std::string& hint) {
  throw Failure(FailureKind::Refused,
                "The " + lock + std::to_string(season.Year()) + " is locked: " + what + " cannot be changed.",
                hint);
}

}  // namespace

void RequireSeasonUnlocked(const HLIData::ISeasonInfo& season, const char* what) {
  if (season.IsSeasonLocked())
    RaiseLocked("season ", season, what, "'season set --season-locked no' unlocks it.");
}

void RequireRankingUnlocked(const HLIData::ISeasonInfo& season) {
  const char* what = "who takes part, and in which order,";
  RequireSeasonUnlocked(season, what);
  if (season.IsRankingLocked()) RaiseLocked("ranking of the season ", season, what, {});
  if (season.IsDraftLocked()) RaiseLocked("draft of the season ", season, what, {});
}

void RequireDraftUnlocked(const HLIData::ISeasonInfo& season) {
  if (season.IsDraftLocked()) RaiseLocked("draft of the season ", season, "the number of its picks", {});
}

}  // namespace HLLeague
