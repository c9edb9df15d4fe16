#include "storage/LeagueChecker.h"

#include <algorithm>
#include <stdexcept>

#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"

namespace HLDataSrvc::league_check {
namespace {

bool Fits(jet::ColumnType type, LeagueTables::Use use) {
  using enum jet::ColumnType;
  const bool isWhole = type == Byte || type == Integer || type == Long;
  switch (use) {
    case LeagueTables::Use::ID:
      return isWhole;
    case LeagueTables::Use::Number:
      return isWhole || type == Currency || type == Single || type == Double || type == Decimal;
    case LeagueTables::Use::YesNo:
      return type == YesNo;
    case LeagueTables::Use::Text:
      return type == Text || type == Memo;
  }
  return false;
}

const char* NameOf(LeagueTables::Use use) {
  switch (use) {
    case LeagueTables::Use::ID:
      return "whole numbers";
    case LeagueTables::Use::Number:
      return "numbers";
    case LeagueTables::Use::YesNo:
      return "yes or no";
    case LeagueTables::Use::Text:
      break;
  }
  return "text";
}

bool IsSameName(const std::string& a, const std::string& b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

const jet::ColumnSpec* FindColumn(const jet::TableInfo& table, const std::string& name) {
  const auto found =
      std::find_if(table.columns.begin(), table.columns.end(),
                   [&](const jet::ColumnSpec& column) { return IsSameName(column.name, name); });
  return found == table.columns.end() ? nullptr : &*found;
}

void AddSettings(jet::Database& database) {
  const auto settings = database.OpenRecordset("select * from " + InBrackets(S::Settings::kTable));
  settings->AddNew();
  settings->Fields(S::Settings::kID).Value(std::int32_t{1});
  settings->Fields(S::Settings::kCurrentSeasonID).Value(std::int32_t{0});
  settings->Update();
  settings->Close();
}

}  // namespace

const jet::TableInfo* FindTable(const std::vector<jet::TableInfo>& tables, const std::string& name) {
  const auto found = std::find_if(tables.begin(), tables.end(),
                                  [&](const jet::TableInfo& table) { return IsSameName(table.name, name); });
  return found == tables.end() ? nullptr : &*found;
}

std::string InBrackets(const std::string& name) {
  return "[" + name + "]";
}

std::string CountOf(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string NumberText(const Number& number) {
  return number ? std::to_string(*number) : "Null";
}

std::string NotIn(const char* table) {
  return std::string(" is not in ") + InBrackets(table) + ".";
}

/// Assigns a column in all rows that have these numbers. Raises std::logic_error if there are none.
void SetColumn(jet::Database& database, const Table& table, const Row& row, const char* column,
               const jet::Value& value) {
  const auto rows = database.OpenRecordset("select * from " + InBrackets(table.name) + " where " +
                                           LeagueTables::Where(table, row));
  if (rows->Eof()) throw std::logic_error("No row of " + InBrackets(table.name) + " was left to repair.");
  for (; !rows->Eof(); rows->MoveNext()) {
    rows->Edit();
    rows->Fields(column).Value(value);
    rows->Update();
  }
  rows->Close();
}

void DeleteRows(jet::Database& database, const Table& table, const Row& row) {
  const auto rows = database.OpenRecordset("select * from " + InBrackets(table.name) + " where " +
                                           LeagueTables::Where(table, row));
  for (; !rows->Eof(); rows->MoveNext())
    rows->Delete();
  rows->Close();
}

LeagueFinding& Checker::Add(Misfit misfit, const char* table, std::string text, std::int32_t seasonID,
                            std::int32_t number) {
  m_findings.push_back({misfit, std::move(text), table, seasonID, number});
  return m_findings.back();
}

void Checker::Repair(LeagueFinding& finding, std::string text, std::function<void(jet::Database&)> carryOut) {
  finding.repair = LeagueRepair{std::move(text), std::move(carryOut)};
}

std::vector<LeagueFinding> Checker::Run() {
  CheckColumns();
  if (!m_findings.empty()) return std::move(m_findings);
  ReadIDs();
  ReadSeasons();
  CheckSettings();
  CheckYears();
  for (const auto& [id, season] : m_seasons)
    CheckSeason(id, season);
  CheckPlaying();
  CheckMoney();
  CheckDraft();
  CheckWinnings();
  CheckMasters();
  ReportUnknownSeasons();
  return std::move(m_findings);
}

void Checker::CheckColumns() {
  const std::vector<jet::TableInfo> tables = m_database.Tables();
  for (const Table& wanted : LeagueTables::All()) {
    const jet::TableInfo* table = FindTable(tables, wanted.name);
    if (!table) {
      Add(Misfit::NoTable, wanted.name, "The league has no table " + InBrackets(wanted.name) + ".");
      continue;
    }
    for (const LeagueTables::Column& column : wanted.columns) {
      const jet::ColumnSpec* found = FindColumn(*table, column.name);
      const std::string name = InBrackets(wanted.name) + ", column " + InBrackets(column.name);
      if (!found) {
        Add(Misfit::WrongColumn, wanted.name, name + " is missing.");
      } else if (!Fits(found->type, column.use)) {
        Add(Misfit::WrongColumn, wanted.name, name + " does not hold " + NameOf(column.use) + ".");
      }
    }
  }
}

const LeagueTables::Rows& Checker::Read(const char* name) {
  const Table& table = LeagueTables::Named(name);
  const LeagueTables::Rows& rows = m_rows[name] = LeagueTables::Read(m_database, table);
  for (const std::string& text : rows.tooLarge)
    Add(Misfit::NumberTooLarge, name, text);
  CheckKeys(table, rows);
  return rows;
}

void Checker::CheckKeys(const Table& table, const LeagueTables::Rows& rows) {
  for (const Row& key : rows.repeatedKeys) {
    const std::string name = LeagueTables::KeyText(table, key);
    const LeagueTables::Repeats count = LeagueTables::CountRepeats(m_database, table, key);
    if (count.repeats > 0) {
      LeagueFinding& finding =
          Add(Misfit::RepeatedRow, table.name,
              name + " is stored " + std::to_string(count.repeats + 1) + " times, equal in every column.", 0,
              key.back().value_or(0));
      Repair(finding, "Deleted " + CountOf(count.repeats, "repeat") + " of " + name + ".",
             [&table, key](jet::Database& database) { LeagueTables::DeleteRepeats(database, table, key); });
    }
    const std::size_t different = count.rows - count.repeats;
    if (different > 1) {
      Add(Misfit::RepeatedKey, table.name,
          name + " has " + std::to_string(different) + " different rows; at most one of them can be right.",
          0, key.back().value_or(0));
    }
  }
}

void Checker::CheckIDs(const char* name) {
  const Table& table = LeagueTables::Named(name);
  for (const Row& row : m_rows.at(name).rows) {
    if (row[0].value_or(0) >= 1) continue;
    Add(Misfit::NoID, name, LeagueTables::KeyText(table, row) + ": the id of a row must be at least 1.", 0,
        row[0].value_or(0));
  }
}

void Checker::ReadIDs() {
  for (const char* name : {S::Season::kTable, S::Manager::kTable, S::Position::kTable, S::Team::kTable,
                           S::Player::kTable, S::PrizeType::kTable, S::Prize::kTable}) {
    std::set<std::int32_t>& ids = m_ids[name];
    for (const Row& row : Read(name).rows) {
      if (row[0]) ids.insert(ids.end(), *row[0]);
    }
    CheckIDs(name);
  }
  for (const char* name : {S::Settings::kTable, S::Playing::kTable, S::MoneyDistribution::kTable,
                           S::Draft::kTable, S::Winning::kTable})
    Read(name);
  CheckIDs(S::Winning::kTable);
}

void Checker::ReadSeasons() {
  for (const Row& row : m_rows.at(S::Season::kTable).rows) {
    if (!row[0] || m_seasons.contains(*row[0])) continue;
    Season season{row[1].value_or(0), row[2].value_or(0), row[3].value_or(0),
                  row[5].value_or(0), row[6].value_or(0), {}};
    const std::int64_t picks = std::int64_t{season.managers} * season.rounds;
    if (picks <= Schema::Draft::kMostPicks)
      season.picks = static_cast<std::int32_t>(std::max<std::int64_t>(picks, 0));
    m_seasons.emplace(*row[0], std::move(season));
  }
  for (const Row& row : m_rows.at(S::Playing::kTable).rows) {
    if (row[0] && row[1] && m_seasons.contains(*row[0])) m_seasons.at(*row[0]).playing.insert(*row[1]);
  }
  for (const Row& row : m_rows.at(S::MoneyDistribution::kTable).rows) {
    if (row[0] && row[1] && m_seasons.contains(*row[0])) m_seasons.at(*row[0]).prizes.insert(*row[1]);
  }
}

void Checker::CheckSettings() {
  const Table& table = LeagueTables::Named(S::Settings::kTable);
  const std::vector<Row>& rows = m_rows.at(S::Settings::kTable).rows;
  const bool isRead = std::any_of(rows.begin(), rows.end(), [](const Row& row) { return row[0] == 1; });
  if (!isRead) {
    LeagueFinding& finding = Add(Misfit::NoSettings, table.name,
                                 "[settings] has no row with id 1, so no season is the current one.");
    // A row under another id may hold the current season that was meant.
    if (rows.empty()) Repair(finding, "Added the row of [settings], with no current season.", AddSettings);
  }
  for (const Row& row : rows) {
    if (row[0] != 1) {
      Add(Misfit::UnreadSettings, table.name,
          LeagueTables::KeyText(table, row) + ": only the row with id 1 is read.", 0, row[0].value_or(0));
      continue;
    }
    const Number season = row[1];
    if (season == 0 || (season && m_seasons.contains(*season))) continue;
    LeagueFinding& finding = Add(
        Misfit::NoCurrentSeason, table.name,
        season ? "[settings]: the current season, id " + NumberText(season) + "," + NotIn(S::Season::kTable)
               : "[settings]: the current season is Null, which cannot be read.");
    // Null means that none was chosen. An id may be that of a season whose row got lost, so that only the
    // commissioner can choose among several others.
    std::int32_t right = 0;
    if (m_seasons.size() == 1) {
      right = m_seasons.begin()->first;
    } else if (season && !m_seasons.empty()) {
      continue;
    }
    Repair(finding,
           right == 0 ? "Set the current season in [settings] to none instead of " + NumberText(season) + "."
                      : "Set the current season in [settings] to " + SeasonText(right) + " instead of " +
                            NumberText(season) + ".",
           [&table, row, right](jet::Database& database) {
             SetColumn(database, table, row, S::Settings::kCurrentSeasonID, right);
           });
  }
}

void Checker::CheckSeason(std::int32_t id, const Season& season) {
  const std::string name = InBrackets(S::Season::kTable) + ", " + SeasonText(id);
  const auto add = [&](Misfit misfit, const std::string& text) {
    Add(misfit, S::Season::kTable, name + text, id, id);
  };
  if (season.managers < 0 || season.rounds < 0) {
    add(Misfit::NegativeNumber, " has " + std::to_string(season.managers) + " managers and " +
                                    std::to_string(season.rounds) + " rounds.");
  }
  if (!season.picks) {
    add(Misfit::TooManyPicks, " has " + std::to_string(season.managers) + " managers and " +
                                  std::to_string(season.rounds) + " rounds: more than " +
                                  std::to_string(Schema::Draft::kMostPicks) +
                                  " picks, so its draft is not loaded.");
  }
  if (season.regularWeeks > season.weeks) {
    add(Misfit::WeeksDiffer, " has " + std::to_string(season.regularWeeks) + " regular weeks among " +
                                 CountOf(static_cast<std::size_t>(std::max(season.weeks, 0)), "week") + ".");
  }
  if (season.managers > 0 && season.playing.size() > static_cast<std::size_t>(season.managers)) {
    add(Misfit::TooManyManagers, " is set to " + std::to_string(season.managers) + " managers, but " +
                                     std::to_string(season.playing.size()) + " take part.");
  }
}

void Checker::CheckYears() {
  std::map<std::int32_t, std::int32_t> first;
  for (const auto& [id, season] : m_seasons) {
    const auto [known, isNew] = first.emplace(season.year, id);
    if (isNew) continue;
    Add(Misfit::SameYear, S::Season::kTable,
        InBrackets(S::Season::kTable) + ", " + SeasonText(id) + " has the year of season id " +
            std::to_string(known->second) + ".",
        id, id);
  }
}

bool Checker::HasSeason(const char* table, const Number& seasonID) {
  if (seasonID && m_seasons.contains(*seasonID)) return true;
  ++m_unknownSeasons[{table, seasonID}];
  return false;
}

void Checker::ReportUnknownSeasons() {
  for (const auto& [key, count] : m_unknownSeasons) {
    const auto& [table, seasonID] = key;
    Add(Misfit::UnknownSeason, table.c_str(),
        InBrackets(table) + " has " + CountOf(count, "row") + " of season id " + NumberText(seasonID) +
            ", which" + NotIn(S::Season::kTable),
        0, seasonID.value_or(0));
  }
}

std::string Checker::ManagerText(const Number& id) {
  std::string text = "manager " + NumberText(id);
  if (!IsIn(S::Manager::kTable, id)) return text;
  const auto rows = m_database.OpenRecordset("select * from [manager info] where [id] = " + NumberText(id));
  if (rows->Eof()) return text;
  const std::string first = rows->Fields(S::Manager::kFirstName).Value().ToText();
  const std::string last = rows->Fields(S::Manager::kLastName).Value().ToText();
  return text + " (" + first + (first.empty() || last.empty() ? "" : " ") + last + ")";
}

}  // namespace HLDataSrvc::league_check
