#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "jet/TableSpec.h"
#include "jet/Value.h"
#include "storage/LeagueCheck.h"
#include "storage/LeagueTables.h"
#include "storage/Schema.h"

/// How LeagueCheck looks at a league.
namespace HLDataSrvc::league_check {

namespace S = Schema;
using LeagueTables::Number;
using LeagueTables::Row;
using LeagueTables::Table;

// Pieces of sentences.
std::string InBrackets(const std::string& name);
std::string CountOf(std::size_t count, const std::string& what);
std::string NumberText(const Number& number);
std::string NotIn(const char* table);

/// The table of a name in any case; null if there is none.
const jet::TableInfo* FindTable(const std::vector<jet::TableInfo>& tables, const std::string& name);

// Repairs of the rows that begin with the numbers of one.
void SetColumn(jet::Database& database, const Table& table, const Row& row, const char* column,
               const jet::Value& value);
void DeleteRows(jet::Database& database, const Table& table, const Row& row);

/// One pass over all tables of a league.
class Checker {
 public:
  explicit Checker(jet::Database& database) : m_database(database) {}

  std::vector<LeagueFinding> Run();

 private:
  // Rows are vectors of numbers in the order of the columns in LeagueTables.
  struct Season {
    std::int32_t year = 0, managers = 0, rounds = 0, regularWeeks = 0, weeks = 0;
    /// The picks that the loader makes positions for; none if they are too many.
    std::optional<std::int32_t> picks;
    std::set<std::int32_t> playing{};
    std::set<std::int32_t> prizes{};
  };

  LeagueFinding& Add(Misfit misfit, const char* table, std::string text, std::int32_t seasonID = 0,
                     std::int32_t number = 0);
  LeagueFinding& AddNotTakingPart(const char* table, const std::string& row, std::int32_t managerID,
                                  std::int32_t seasonID, std::int32_t number);
  void Repair(LeagueFinding& finding, std::string text, std::function<void(jet::Database&)> carryOut);

  void CheckColumns();
  /// Reads a table and reports what is wrong with any table's rows: keys, numbers.
  const LeagueTables::Rows& Read(const char* name);
  void CheckKeys(const Table& table, const LeagueTables::Rows& rows);
  void CheckIDs(const char* name);

  void ReadIDs();
  void ReadSeasons();
  void CheckSettings();
  void CheckSeason(std::int32_t id, const Season& season);
  void CheckYears();
  void CheckPlaying();
  void CheckMoney();
  void CheckDraft();
  void CheckPick(const Row& row, const Season& season);
  void CheckPicker(const Row& row, const Season& season);
  void CheckPicked(const Row& row);
  void CheckWinnings();
  void CheckMasters();
  Number PositionOfTeams() const;

  /// Counts a row whose season has no row; true if the season has one.
  bool HasSeason(const char* table, const Number& seasonID);
  void ReportUnknownSeasons();

  bool IsIn(const char* table, const Number& id) const { return id && m_ids.at(table).contains(*id); }
  std::string SeasonText(std::int32_t id) const {
    return "season " + std::to_string(m_seasons.at(id).year) + " (id " + std::to_string(id) + ")";
  }
  /// "[draft info], pick 3 of season 2024 (id 1)"
  std::string PickText(const Row& row) const {
    return InBrackets(S::Draft::kTable) + ", pick " + NumberText(row[1]) + " of " + SeasonText(*row[0]);
  }
  std::string WinningText(const Row& row) const {
    return InBrackets(S::Winning::kTable) + ", winning " + NumberText(row[0]) + " of " + SeasonText(*row[1]);
  }
  std::string ManagerText(const Number& id);

  jet::Database& m_database;
  std::vector<LeagueFinding> m_findings;
  std::map<std::string, LeagueTables::Rows> m_rows;
  std::map<std::string, std::set<std::int32_t>> m_ids;  ///< by table
  std::map<std::int32_t, Season> m_seasons;
  std::map<std::pair<std::string, Number>, std::size_t> m_unknownSeasons;  ///< rows by table and season
  /// First pick of each player or team of a season: season, "P" or "T", id.
  std::map<std::tuple<std::int32_t, char, std::int32_t>, std::int32_t> m_picked;
};

}  // namespace HLDataSrvc::league_check
