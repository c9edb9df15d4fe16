#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "HLLeague/League.h"

namespace HLLeague {

/// A prize that was won, with names for its ids.
struct Winning {
  std::int32_t id = 0;         ///< 0 while it is not saved
  std::int32_t week = 0;       ///< 0: no week
  std::int32_t managerID = 0;  ///< 0 when the stored winning has no manager
  std::string manager;         ///< full name; the stored text when there is no such manager
  std::int32_t prizeID = 0;
  std::string prize;
  /// What it pays: the prize's amount in the season. None for a prize that the season does not put up.
  std::optional<std::int32_t> amount;
};

/// The winnings of a season by week, then by id; those without a week come last.
std::vector<Winning> WinningsIn(League& league, const HLIData::ISeasonInfo& season);

/// The text of a winning's week: "3", or "-" for none.
std::string WeekText(std::int32_t week);

/// The full names of all managers, under their ids.
std::map<std::int32_t, std::string> ManagerNames(League& league);

}  // namespace HLLeague
