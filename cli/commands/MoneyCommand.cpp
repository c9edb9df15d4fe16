#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "HLLeague/Accounts.h"
#include "HLLeague/League.h"
#include "HLLeague/Seasons.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/Json.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNameWidth = 30;

struct MoneyOptions {
  std::optional<std::int32_t> year;
  bool all = false;
};

Json AccountJson(const Account& account, bool isTotal) {
  Json json;
  if (!isTotal) {
    json["managerID"] = account.managerID;
    json["manager"] = account.name;
    json["seasons"] = account.seasons;
  }
  json["due"] = account.due;
  json["paid"] = account.paid;
  json["owed"] = account.Owed();
  json["won"] = account.won;
  json["balance"] = account.Balance();
  return json;
}

void PrintAccounts(Context& context, const Accounts& accounts) {
  using Align = TextTable::Align;
  TextTable table({{"manager"},
                   {"due", Align::Right},
                   {"paid", Align::Right},
                   {"owed", Align::Right},
                   {"won", Align::Right},
                   {"balance", Align::Right}});
  const auto add = [&table](const std::string& name, const Account& account) {
    table.Add({CutToWidth(Printable(name), kNameWidth), std::to_string(account.due),
               std::to_string(account.paid), std::to_string(account.Owed()), std::to_string(account.won),
               std::to_string(account.Balance())});
  };
  for (const Account& account : accounts.managers)
    add(account.name, account);
  add("together", accounts.Total());
  context.output.Lines(table.Lines());
}

void Print(Context& context, const Json& scope, const std::string& title, const Accounts& accounts,
           std::int64_t pool) {
  const Account total = accounts.Total();
  if (context.json) {
    Json document = scope;
    document["managers"] = Json::Array();
    for (const Account& account : accounts.managers)
      document["managers"].Append(AccountJson(account, /*isTotal=*/false));
    document["total"] = AccountJson(total, /*isTotal=*/true);
    document["pool"] = pool;
    document["putUp"] = accounts.putUp;
    document["winningsWithoutAmount"] = accounts.unpricedWinnings;
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line(title);
  PrintAccounts(context, accounts);
  const std::int64_t kept = total.paid - total.won;
  context.output.Line("Pool " + std::to_string(pool) + ", prizes put up " + std::to_string(accounts.putUp) +
                      "; paid in " + std::to_string(total.paid) + ", won " + std::to_string(total.won) +
                      ": " +
                      (kept < 0 ? std::to_string(-kept) + " short." : std::to_string(kept) + " left."));
  if (accounts.unpricedWinnings > 0) {
    context.output.Line(CountOf(static_cast<std::int64_t>(accounts.unpricedWinnings), "winning") +
                        " of prizes that their season does not put up count as nothing.");
  }
}

void Money(Context& context, const MoneyOptions& options) {
  League& league = context.OpenLeague();
  if (!options.all) {
    const auto season = SeasonToShow(league, options.year);
    Json scope;
    scope["season"] = season->Year();
    Print(context, scope,
          "Season " + std::to_string(season->Year()) + ", contribution " +
              std::to_string(season->MoneyContribution()),
          AccountsOf(league, *season), PoolOf(*season));
    return;
  }
  std::vector<Accounts> seasons;
  std::int64_t pool = 0;
  Json scope;
  scope["seasons"] = Json::Array();
  std::string missing;
  for (const auto& season : AllSeasons(league, &missing)) {
    seasons.push_back(AccountsOf(league, *season));
    pool += PoolOf(*season);
    scope["seasons"].Append(season->Year());
  }
  Print(context, scope, "All " + CountOf(static_cast<std::int64_t>(seasons.size()), "season"), SumOf(seasons),
        pool);
  RequireNoneMissing(missing);
}

}  // namespace

void AddMoneyCommand(Command& app) {
  Command command = app.AddCommand("money", "Show what each manager has paid and won");
  auto options = std::make_shared<MoneyOptions>();
  const Option year = command.AddOption("--season", "YEAR", options->year,
                                        "in the season of this year; without, in the current one");
  command.AddFlag("--all", options->all, "in all seasons together").Excludes(year);
  command.Runs(Money, options);
}

}  // namespace cli
