#include "HLLeague/Seasons.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "league/Numbers.h"
#include "storage/Schema.h"

namespace HLLeague {
namespace {

namespace Schema = HLDataSrvc::Schema;
using HLIData::ISeasonInfo;
using Seasons = std::vector<std::shared_ptr<ISeasonInfo>>;

constexpr const char* kHowToChoose =
    "'settings --current-season ID' chooses another season; 'dump \"season info\"' shows their ids.";

template <typename Record>
HLIData::KeyedCollection<Record>& Loaded(const std::shared_ptr<HLIData::KeyedCollection<Record>>& part,
                                         const std::string& what, const ISeasonInfo& season) {
  if (part) return *part;
  throw Failure(FailureKind::Refused,
                "The " + what + " of the season " + std::to_string(season.Year()) + " could not be loaded.");
}

/// The identifiers of the stored seasons whose rows fit a condition.
std::vector<std::int32_t> StoredSeasonIDs(League& league, const std::string& where) {
  const std::string select = "select [" + std::string(Schema::Season::kID) + "] from [" +
                             Schema::Season::kTable + "] where " + where;
  std::vector<std::int32_t> ids;
  for (const HLDataSrvc::TextRow& row : HLDataSrvc::SelectRows(league.Service(), select))
    ids.push_back(WholeNumber(row[0].value_or("")).value_or(0));
  return ids;
}

/// What is said of seasons that could not be loaded, and of those that the service passes over because of
/// their identifiers.
std::string WithUnlisted(League& league, std::string missing) {
  for (const std::int32_t id : StoredSeasonIDs(league, "[" + std::string(Schema::Season::kID) + "] < 1")) {
    missing += (missing.empty() ? "" : "\n") + ("Season " + std::to_string(id)) +
               " is left out: the id of a season must be at least 1.";
  }
  return missing;
}

}  // namespace

Seasons AllSeasons(League& league, std::string* missing) {
  // The service lists all seasons once; a current one that was discarded since has to be loaded first.
  if (league.Service().CurrentSeasonID() != 0) {
    league.Service().GetCurrentSeasonInfo();
    league.TakeShownMessages();  // a season that cannot be loaded is named below
  }
  const auto loaded = league.Service().GetAllSeasons();
  const std::string shown = league.TakeShownMessages();
  if (!loaded && !shown.empty()) throw Failure(FailureKind::Refused, shown, kHowToChoose);
  const std::string all = WithUnlisted(league, shown);
  if (missing != nullptr) *missing = all;
  if (missing == nullptr && !all.empty()) league.Note(all);
  Seasons seasons = loaded ? loaded->Items() : Seasons();
  std::sort(seasons.begin(), seasons.end(), [](const auto& a, const auto& b) {
    return std::tuple(a->Year(), a->ID()) < std::tuple(b->Year(), b->ID());
  });
  return seasons;
}

void RequireNoneMissing(const std::string& missing) {
  if (!missing.empty()) throw Failure(FailureKind::Refused, missing, kHowToChoose);
}

Seasons SeasonsOfYear(League& league, std::int32_t year) {
  const Seasons all = AllSeasons(league);
  Seasons ofYear;
  std::copy_if(all.begin(), all.end(), std::back_inserter(ofYear),
               [year](const auto& season) { return season->Year() == year; });
  for (const std::int32_t id :
       StoredSeasonIDs(league, "[" + std::string(Schema::Season::kYear) + "] = " + std::to_string(year))) {
    const bool isLoaded =
        std::any_of(ofYear.begin(), ofYear.end(), [id](const auto& season) { return season->ID() == id; });
    if (isLoaded) continue;
    throw Failure(FailureKind::Refused,
                  "The season " + std::to_string(year) + ", with the id " + std::to_string(id) +
                      ", could not be loaded.",
                  "'check' says what is wrong with it.");
  }
  return ofYear;
}

std::shared_ptr<ISeasonInfo> SeasonToShow(League& league, const std::optional<std::int32_t>& year) {
  if (!year) return CurrentSeason(league);
  const Seasons seasons = SeasonsOfYear(league, *year);
  if (seasons.size() == 1) return seasons.front();
  if (seasons.empty()) {
    throw Failure(FailureKind::Refused, "There is no season " + std::to_string(*year) + ".",
                  "'season list' lists the seasons.");
  }
  throw Failure(FailureKind::Refused, "There is more than one season " + std::to_string(*year) + ".",
                "'season list' lists them; 'settings --current-season ID' chooses one by its id.");
}

std::shared_ptr<ISeasonInfo> SeasonShownBeside(League& league, const std::optional<std::int32_t>& year) {
  if (year) return SeasonToShow(league, year);
  if (league.Service().CurrentSeasonID() == 0) return nullptr;
  try {
    return CurrentSeason(league);
  } catch (const Failure& failure) {
    league.Note(failure.what());
    return nullptr;
  }
}

bool IsCurrent(League& league, const ISeasonInfo& season) {
  return season.ID() == league.Service().CurrentSeasonID();
}

HLIData::KeyedCollection<HLIData::IManagerInfo>& ManagersOf(const ISeasonInfo& season) {
  return Loaded(season.Managers(), "managers", season);
}

HLIData::KeyedCollection<HLIData::IPrizeInfo>& PrizesOf(const ISeasonInfo& season) {
  return Loaded(season.Prizes(), "prizes", season);
}

HLIData::KeyedCollection<HLIData::IWinningInfo>& WinningsOf(const ISeasonInfo& season) {
  return Loaded(season.Winnings(), "winnings", season);
}

HLIData::KeyedCollection<HLIData::IDraftInfo>& DraftsOf(const ISeasonInfo& season) {
  return Loaded(season.Drafts(), "draft", season);
}

std::vector<std::shared_ptr<HLIData::IManagerInfo>> ManagersInOrder(const ISeasonInfo& season) {
  auto managers = ManagersOf(season).Items();
  std::stable_sort(managers.begin(), managers.end(), [](const auto& a, const auto& b) {
    if (a->Rank() < 1 || b->Rank() < 1) return a->Rank() >= 1 && b->Rank() < 1;
    return a->Rank() < b->Rank();
  });
  return managers;
}

void ChangeAndSave(League& league, const std::string& what, const std::function<bool()>& changeAndSave) {
  league.Transact(what + " could not be saved.", [&] {
    const bool saved = changeAndSave();
    league.RaiseShownMessages();
    if (!saved) throw Failure(FailureKind::Refused, "The service gave no reason.");
  });
  league.Service().DiscardCurrentSeasonInfo();
}

}  // namespace HLLeague
