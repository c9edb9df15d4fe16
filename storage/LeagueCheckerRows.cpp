// What the rows of seasons and the master records contradict.

#include <algorithm>
#include <stdexcept>

#include "jet/TableSpec.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "storage/LeagueChecker.h"

namespace HLDataSrvc::league_check {

void Checker::CheckPlaying() {
  std::map<std::pair<std::int32_t, std::int32_t>, Number> ranked;  // managers by season and rank
  for (const Row& row : m_rows.at(S::Playing::kTable).rows) {
    if (!HasSeason(S::Playing::kTable, row[0])) continue;
    const std::string where = InBrackets(S::Playing::kTable) + ", " + SeasonText(*row[0]) + ": ";
    if (!IsIn(S::Manager::kTable, row[1])) {
      Add(Misfit::UnknownManager, S::Playing::kTable,
          where + ManagerText(row[1]) + " takes part, but" + NotIn(S::Manager::kTable), *row[0],
          row[1].value_or(0));
    }
    if (row[2].value_or(0) < 1) continue;
    const auto [known, isNew] = ranked.emplace(std::pair(*row[0], *row[2]), row[1]);
    if (isNew || known->second == row[1]) continue;
    Add(Misfit::SameRank, S::Playing::kTable,
        where + ManagerText(row[1]) + " and " + ManagerText(known->second) + " both have rank " +
            NumberText(row[2]) + ", so the order of the draft is not settled.",
        *row[0], row[1].value_or(0));
  }
}

void Checker::CheckMoney() {
  const Table& table = LeagueTables::Named(S::MoneyDistribution::kTable);
  const LeagueTables::Rows& all = m_rows.at(S::MoneyDistribution::kTable);
  for (const Row& row : all.rows) {
    if (!HasSeason(S::MoneyDistribution::kTable, row[0])) continue;
    const std::string where =
        InBrackets(table.name) + ", " + SeasonText(*row[0]) + ": prize " + NumberText(row[1]);
    if (!IsIn(S::Prize::kTable, row[1])) {
      Add(Misfit::UnknownPrize, table.name, where + NotIn(S::Prize::kTable) + " The season cannot be loaded.",
          *row[0], row[1].value_or(0));
    }
    if (row[2]) continue;
    LeagueFinding& finding =
        Add(Misfit::NoAmount, table.name, where + " has no amount. The season cannot be loaded.", *row[0],
            row[1].value_or(0));
    const Row key{row[0], row[1]};
    // Another row of the prize may have the amount.
    if (std::find(all.repeatedKeys.begin(), all.repeatedKeys.end(), key) != all.repeatedKeys.end()) continue;
    Repair(finding,
           "Set the amount of prize " + NumberText(row[1]) + " of " + SeasonText(*row[0]) +
               " to 0 instead of Null.",
           [&table, row](jet::Database& database) {
             SetColumn(database, table, row, S::MoneyDistribution::kMoney, std::int32_t{0});
           });
  }
}

void Checker::CheckDraft() {
  std::int32_t last = 0;  // season whose first pick has been seen
  for (const Row& row : m_rows.at(S::Draft::kTable).rows) {
    if (!HasSeason(S::Draft::kTable, row[0])) continue;
    const Season& season = m_seasons.at(*row[0]);
    const std::int32_t pick = row[1].value_or(0);
    if (*row[0] != last && pick > 1 && pick <= season.picks.value_or(Schema::Draft::kMostPicks)) {
      Add(Misfit::LatePicks, S::Draft::kTable,
          InBrackets(S::Draft::kTable) + ", " + SeasonText(*row[0]) + ": the first pick stored is " +
              std::to_string(pick) + ". A crash while the draft was being emptied can leave this.",
          *row[0], pick);
    }
    last = *row[0];
    CheckPick(row, season);
  }
}

void Checker::CheckPick(const Row& row, const Season& season) {
  const std::int32_t pick = row[1].value_or(0);
  if (pick < 1 || (season.picks && pick > *season.picks)) {
    Add(Misfit::OutsideDraft, S::Draft::kTable,
        PickText(row) + ": the draft has " +
            CountOf(static_cast<std::size_t>(season.picks.value_or(Schema::Draft::kMostPicks)), "pick") +
            " (" + std::to_string(season.managers) + " managers, " + std::to_string(season.rounds) +
            " rounds). Loading it ends here.",
        *row[0], pick);
  }
  CheckPicker(row, season);
  CheckPicked(row);
}

void Checker::CheckPicker(const Row& row, const Season& season) {
  const Table& table = LeagueTables::Named(S::Draft::kTable);
  const Number manager = row[2];
  const std::int32_t pick = row[1].value_or(0);
  const std::string end = " Loading the draft ends here.";
  if (manager.value_or(0) == 0) {
    if (row[3].value_or(0) != 0 || row[4].value_or(0) != 0) {
      Add(Misfit::PickWithoutManager, table.name, PickText(row) + " has no manager." + end, *row[0], pick);
      return;
    }
    LeagueFinding& finding =
        Add(Misfit::EmptyPick, table.name, PickText(row) + " has neither manager nor player nor team." + end,
            *row[0], pick);
    Repair(finding,
           "Deleted the empty row of pick " + NumberText(row[1]) + " of " + SeasonText(*row[0]) + ".",
           [&table, row](jet::Database& database) { DeleteRows(database, table, row); });
  } else if (!IsIn(S::Manager::kTable, manager)) {
    Add(Misfit::UnknownManager, table.name,
        PickText(row) + ": " + ManagerText(manager) + NotIn(S::Manager::kTable) + end, *row[0], pick);
  } else if (!season.playing.contains(*manager)) {
    AddNotTakingPart(table.name, PickText(row), *manager, *row[0], pick).text += end;
  }
}

void Checker::CheckPicked(const Row& row) {
  const Table& table = LeagueTables::Named(S::Draft::kTable);
  const std::int32_t player = row[3].value_or(0);
  const std::int32_t team = row[4].value_or(0);
  const std::int32_t pick = row[1].value_or(0);
  if (player != 0 && !IsIn(S::Player::kTable, player)) {
    Add(Misfit::UnknownPlayer, table.name,
        PickText(row) + ": player " + std::to_string(player) + NotIn(S::Player::kTable), *row[0], pick);
  } else if (player != 0 && team != 0) {
    LeagueFinding& finding = Add(Misfit::TwoInOnePick, table.name,
                                 PickText(row) + " holds player " + std::to_string(player) + " and team " +
                                     std::to_string(team) + ". The player counts; the team is never read.",
                                 *row[0], pick);
    Repair(finding,
           "Removed team " + std::to_string(team) + " from pick " + NumberText(row[1]) + " of " +
               SeasonText(*row[0]) + "; player " + std::to_string(player) + " keeps the pick.",
           [&table, row](jet::Database& database) {
             SetColumn(database, table, row, S::Draft::kTeamID, jet::Null());
           });
  } else if (team != 0 && !IsIn(S::Team::kTable, team)) {
    Add(Misfit::UnknownTeam, table.name,
        PickText(row) + ": team " + std::to_string(team) + NotIn(S::Team::kTable) +
            " Loading the draft ends here.",
        *row[0], pick);
  }
  if (player < 1 && team < 1) return;
  const char type = player >= 1 ? 'P' : 'T';
  const std::int32_t id = player >= 1 ? player : team;
  const auto [known, isNew] = m_picked.emplace(std::tuple(*row[0], type, id), pick);
  if (isNew || known->second == pick) return;
  Add(Misfit::PickedTwice, table.name,
      PickText(row) + ": " + (type == 'P' ? "player " : "team ") + std::to_string(id) +
          " is picked at pick " + std::to_string(known->second) + " already. Loading the draft ends here.",
      *row[0], pick);
}

LeagueFinding& Checker::AddNotTakingPart(const char* table, const std::string& row, std::int32_t managerID,
                                         std::int32_t seasonID, std::int32_t number) {
  LeagueFinding& finding =
      Add(Misfit::NotTakingPart, table,
          row + ": " + ManagerText(managerID) + " does not take part in the season.", seasonID, number);
  const Season& season = m_seasons.at(seasonID);
  const bool hasRoom =
      season.managers > 0 && season.playing.size() < static_cast<std::size_t>(season.managers);
  finding.managerID = hasRoom ? managerID : 0;
  return finding;
}

void Checker::CheckWinnings() {
  std::map<std::pair<std::int32_t, std::int32_t>, std::size_t> notPutUp;  // winnings by season and prize
  for (const Row& row : m_rows.at(S::Winning::kTable).rows) {
    if (!HasSeason(S::Winning::kTable, row[1])) continue;
    const Season& season = m_seasons.at(*row[1]);
    const std::int32_t id = row[0].value_or(0);
    if (!IsIn(S::Prize::kTable, row[2])) {
      Add(Misfit::UnknownPrize, S::Winning::kTable,
          WinningText(row) + ": prize " + NumberText(row[2]) + NotIn(S::Prize::kTable), *row[1], id);
    } else if (!season.prizes.contains(*row[2])) {
      ++notPutUp[{*row[1], *row[2]}];
    }
    if (!IsIn(S::Manager::kTable, row[3])) {
      Add(Misfit::UnknownManager, S::Winning::kTable,
          WinningText(row) + ": " + ManagerText(row[3]) + NotIn(S::Manager::kTable), *row[1], id);
    } else if (!season.playing.contains(*row[3])) {
      AddNotTakingPart(S::Winning::kTable, WinningText(row), *row[3], *row[1], id);
    }
    const std::int32_t week = row[4].value_or(0);
    if (week < 0 || (season.weeks > 0 && week > season.weeks)) {
      Add(Misfit::OutsideWeeks, S::Winning::kTable,
          WinningText(row) + ": the season has " +
              CountOf(static_cast<std::size_t>(std::max(season.weeks, 0)), "week") + ", and no week " +
              std::to_string(week) + ".",
          *row[1], id);
    }
  }
  for (const auto& [key, count] : notPutUp) {
    Add(Misfit::NotPutUp, S::Winning::kTable,
        InBrackets(S::Winning::kTable) + ", " + SeasonText(key.first) + ": prize " +
            std::to_string(key.second) + " is won in " + CountOf(count, "row") + ", but not in " +
            InBrackets(S::MoneyDistribution::kTable) + " of the season.",
        key.first, key.second);
  }
}

void Checker::CheckMasters() {
  const auto check = [&](const char* table, const Row& row, const char* what, const Number& id,
                         const char* parent, Misfit misfit) {
    if (IsIn(parent, id)) return;
    Add(misfit, table,
        LeagueTables::KeyText(LeagueTables::Named(table), row) + ": " + what + " " + NumberText(id) +
            NotIn(parent),
        0, row[0].value_or(0));
  };
  for (const Row& row : m_rows.at(S::Player::kTable).rows) {
    if (row[1].value_or(0) != 0)
      check(S::Player::kTable, row, "position", row[1], S::Position::kTable, Misfit::UnknownPosition);
    if (row[2].value_or(0) != 0)
      check(S::Player::kTable, row, "team", row[2], S::Team::kTable, Misfit::UnknownTeam);
  }
  const Number ofTeams = PositionOfTeams();
  for (const Row& row : m_rows.at(S::Team::kTable).rows) {
    if (row[1].value_or(0) == 0) continue;
    const std::size_t before = m_findings.size();
    check(S::Team::kTable, row, "position", row[1], S::Position::kTable, Misfit::UnknownPosition);
    if (m_findings.size() == before || !ofTeams) continue;
    Repair(m_findings.back(),
           "Set the position of team " + NumberText(row[0]) + " to " + NumberText(ofTeams) +
               ", as all other teams have it, instead of " + NumberText(row[1]) + ".",
           [row, ofTeams](jet::Database& database) {
             SetColumn(database, LeagueTables::Named(S::Team::kTable), row, S::Team::kPositionID, *ofTeams);
           });
  }
  for (const Row& row : m_rows.at(S::Prize::kTable).rows) {
    const std::int32_t type = row[1].value_or(0);  // Null is read as type 0
    check(S::Prize::kTable, row, "prize type", type, S::PrizeType::kTable, Misfit::UnknownPrizeType);
  }
}

/// The position that all teams have whose position exists; none if they differ, or there is none.
Number Checker::PositionOfTeams() const {
  Number common;
  for (const Row& row : m_rows.at(S::Team::kTable).rows) {
    if (!IsIn(S::Position::kTable, row[1])) continue;
    if (common && common != row[1]) return {};
    common = row[1];
  }
  return common;
}

}  // namespace HLDataSrvc::league_check
