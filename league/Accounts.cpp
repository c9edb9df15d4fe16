#include "HLLeague/Accounts.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "HLLeague/Find.h"
#include "HLLeague/Seasons.h"
#include "HLLeague/Winnings.h"

namespace HLLeague {
namespace {

void Add(Account& sum, const Account& account) {
  sum.seasons += account.seasons;
  sum.due += account.due;
  sum.paid += account.paid;
  sum.won += account.won;
  sum.winnings += account.winnings;
}

void SortByBalance(std::vector<Account>& accounts) {
  std::sort(accounts.begin(), accounts.end(), [](const Account& a, const Account& b) {
    return std::tuple(-a.Balance(), a.name, a.managerID) < std::tuple(-b.Balance(), b.name, b.managerID);
  });
}

std::vector<Account> SortedAccounts(const std::map<std::int32_t, Account>& byManager) {
  std::vector<Account> accounts;
  for (const auto& [id, account] : byManager)
    accounts.push_back(account);
  SortByBalance(accounts);
  return accounts;
}

}  // namespace

Account Accounts::Total() const {
  Account total;
  for (const Account& account : managers)
    Add(total, account);
  return total;
}

Accounts AccountsOf(League& league, const HLIData::ISeasonInfo& season) {
  std::map<std::int32_t, Account> byManager;
  const std::int64_t contribution = season.MoneyContribution();
  for (const auto& manager : ManagersOf(season)) {
    byManager[manager->ID()] = {.managerID = manager->ID(),
                                .name = FullName(*manager),
                                .seasons = 1,
                                .due = contribution,
                                .paid = manager->IsFeePaid() ? contribution : 0};
  }
  Accounts accounts;
  for (const Winning& winning : WinningsIn(league, season)) {
    Account& account = byManager[winning.managerID];
    account.managerID = winning.managerID;
    if (account.name.empty()) account.name = winning.manager;
    ++account.winnings;
    account.won += winning.amount.value_or(0);
    if (!winning.amount) ++accounts.unpricedWinnings;
  }
  accounts.managers = SortedAccounts(byManager);
  for (const auto& prize : PrizesOf(season))
    accounts.putUp += prize->Amount();
  return accounts;
}

Accounts SumOf(const std::vector<Accounts>& seasons) {
  std::map<std::int32_t, Account> byManager;
  Accounts all;
  for (const Accounts& season : seasons) {
    for (const Account& account : season.managers) {
      Account& sum = byManager[account.managerID];
      sum.managerID = account.managerID;
      sum.name = account.name;
      Add(sum, account);
    }
    all.putUp += season.putUp;
    all.unpricedWinnings += season.unpricedWinnings;
  }
  all.managers = SortedAccounts(byManager);
  return all;
}

std::int64_t PoolOf(const HLIData::ISeasonInfo& season) {
  return std::int64_t{season.MoneyContribution()} * season.NoOfManagers();
}

}  // namespace HLLeague
