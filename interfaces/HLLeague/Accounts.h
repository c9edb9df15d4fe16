#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "HLLeague/League.h"

namespace HLLeague {

/// What a manager owes, has paid and has won, in one season or in several; whole currency units.
struct Account {
  std::int32_t managerID = 0;
  std::string name;
  std::int32_t seasons =
      0;                  ///< in which he took part; one can win without, by a mistake that the file allows
  std::int64_t due = 0;   ///< the contributions
  std::int64_t paid = 0;  ///< the contributions whose fee is marked as paid
  std::int64_t won = 0;   ///< every winning pays its prize's amount of the season
  std::size_t winnings = 0;

  std::int64_t Owed() const { return due - paid; }
  std::int64_t Balance() const { return won - paid; }
};

/// The accounts of one season or several, the highest balance first.
struct Accounts {
  std::vector<Account> managers;
  std::int64_t putUp = 0;  ///< the amounts of all prizes, each counted once
  std::size_t unpricedWinnings =
      0;  ///< winnings of prizes that their season does not put up: they pay nothing

  /// The sums of all managers, in an account without a name.
  Account Total() const;
};

/// The accounts of a season. A winning without a manager counts under the id 0.
Accounts AccountsOf(League& league, const HLIData::ISeasonInfo& season);

/// The accounts of several seasons added up for each manager.
Accounts SumOf(const std::vector<Accounts>& seasons);

/// What the managers that a season is set for pay in together.
std::int64_t PoolOf(const HLIData::ISeasonInfo& season);

}  // namespace HLLeague
