#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "HLLeague/League.h"

namespace HLLeague {

/// The years that a season may have.
inline constexpr std::int32_t kFirstYear = 1900;
inline constexpr std::int32_t kLastYear = 2999;

/// All seasons that can be loaded, by year, those of one year by id. Others are named in `missing`, or in a
/// note without it.
std::vector<std::shared_ptr<HLIData::ISeasonInfo>> AllSeasons(League& league, std::string* missing = nullptr);
/// Raises Failure with that text, unless it is empty: for commands that list all seasons, once they have.
void RequireNoneMissing(const std::string& missing);

/// The seasons of a year; there should be one at most, but the file allows more. Raises Failure when there is
/// one that could not be loaded.
std::vector<std::shared_ptr<HLIData::ISeasonInfo>> SeasonsOfYear(League& league, std::int32_t year);

/// The season of a year; without a year, the current one. Raises Failure when there is none, or several.
std::shared_ptr<HLIData::ISeasonInfo> SeasonToShow(League& league, const std::optional<std::int32_t>& year);

/// The season that a list of the whole league shows something of besides: that of the year, else the current
/// one; empty when no season is current or, with a note, when it cannot be loaded.
std::shared_ptr<HLIData::ISeasonInfo> SeasonShownBeside(League& league,
                                                        const std::optional<std::int32_t>& year);

/// Whether a season is the current one.
bool IsCurrent(League& league, const HLIData::ISeasonInfo& season);

// The parts of a season. Raise Failure for one that could not be loaded: what is missing must neither be
// shown as empty nor be saved.

HLIData::KeyedCollection<HLIData::IManagerInfo>& ManagersOf(const HLIData::ISeasonInfo& season);
HLIData::KeyedCollection<HLIData::IPrizeInfo>& PrizesOf(const HLIData::ISeasonInfo& season);
HLIData::KeyedCollection<HLIData::IWinningInfo>& WinningsOf(const HLIData::ISeasonInfo& season);
HLIData::KeyedCollection<HLIData::IDraftInfo>& DraftsOf(const HLIData::ISeasonInfo& season);

/// The managers by their rank; those who are not ranked come last.
std::vector<std::shared_ptr<HLIData::IManagerInfo>> ManagersInOrder(const HLIData::ISeasonInfo& season);

/// Changes the current season in memory and saves it, as one transaction; `what` could not be saved when that
/// fails: "The prizes". Afterwards the season is discarded, so that it is loaded as it is stored. Raises
/// Failure for an exception, a message box or a false result of `changeAndSave`; nothing is stored then.
void ChangeAndSave(League& league, const std::string& what, const std::function<bool()>& changeAndSave);

}  // namespace HLLeague
