#include "storage/LeagueCheck.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "jet/TableSpec.h"
#include "jet/dao/Database.h"
#include "jet/dao/Transaction.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueBackup.h"
#include "storage/LeagueChecker.h"
#include "storage/LeagueTables.h"

namespace HLDataSrvc {
namespace {

/// Carries out the repairs of all findings.
void CarryOut(jet::Database& database, const std::vector<LeagueFinding>& findings,
              std::vector<std::string>& done) {
  for (const LeagueFinding& finding : findings) {
    if (!finding.repair) continue;
    finding.repair->carryOut(database);
    done.push_back(finding.repair->text);
  }
}

bool HasRepair(const std::vector<LeagueFinding>& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const LeagueFinding& finding) { return finding.repair.has_value(); });
}

}  // namespace

bool IsRemark(Misfit misfit) {
  return misfit == Misfit::TwoInOnePick || misfit == Misfit::LatePicks || misfit == Misfit::NoSettings;
}

const char* NameOf(Misfit misfit) {
  static constexpr std::array kNames{"no table",           "wrong column",      "number too large",
                                     "repeated row",       "repeated key",      "no id",
                                     "no settings",        "unread settings",   "no current season",
                                     "negative number",    "too many picks",    "same year",
                                     "weeks differ",       "too many managers", "same rank",
                                     "unknown season",     "unknown manager",   "unknown player",
                                     "unknown team",       "unknown position",  "unknown prize",
                                     "unknown prize type", "outside draft",     "not taking part",
                                     "picked twice",       "two in one pick",   "pick without manager",
                                     "empty pick",         "late picks",        "no amount",
                                     "not put up",         "outside weeks"};
  static_assert(kNames.size() == static_cast<std::size_t>(Misfit::OutsideWeeks) + 1);
  return kNames[static_cast<std::size_t>(misfit)];
}

bool IsLeague(const jet::Database& database) {
  const std::vector<jet::TableInfo> tables = database.Tables();
  const auto& wanted = LeagueTables::All();
  const auto present = std::count_if(wanted.begin(), wanted.end(), [&](const auto& table) {
    return league_check::FindTable(tables, table.name);
  });
  return static_cast<std::size_t>(present) * 2 > wanted.size();
}

std::vector<LeagueFinding> CheckLeague(jet::Database& database) {
  return league_check::Checker(database).Run();
}

RepairedLeague RepairLeague(jet::Database& database) {
  constexpr int kMostPasses = 10;  // a repair can make rows equal, or leave one season
  RepairedLeague result;
  jet::Transaction transaction(database);
  result.left = CheckLeague(database);
  for (int pass = 0; HasRepair(result.left); ++pass) {
    if (pass == kMostPasses) throw std::logic_error("The repairs of the league come to no end.");
    CarryOut(database, result.left, result.repairs);
    result.left = CheckLeague(database);
  }
  transaction.Commit();
  return result;
}

RepairedLeague RepairLeagueFile(const std::string& path, const std::string& backup) {
  const auto database = HLServiceUtils::OpenExclusively(path);
  RepairedLeague result;
  result.damage = database->Check().findings;
  if (!result.damage.empty()) return result;
  result.left = CheckLeague(*database);
  if (!HasRepair(result.left)) return result;
  BackUpLeague(*database, backup);
  return RepairLeague(*database);
}

}  // namespace HLDataSrvc
