#include "tests/service/LeagueRows.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

#include "jet/TableSpec.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Recordset.h"
#include "storage/HLServiceUtils.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc::test {
namespace {

using HLIData::PickType;

constexpr char kSeparator = '|';

Lines Split(const std::string& text, char separator) {
  Lines pieces{""};
  for (const char c : text) {
    if (c == separator) {
      pieces.emplace_back();
    } else {
      pieces.back() += c;
    }
  }
  return pieces;
}

std::string Text(const jet::Value& value) {
  const bool* yesNo = value.As<bool>();
  return yesNo ? FieldText(*yesNo) : value.ToText();
}
std::shared_ptr<jet::Recordset> Open(jet::Database& database, const std::string& table) {
  return database.OpenRecordset("select * from [" + table + "]");
}

/// The lines of a reader that separates fields by `separator` and calls Null `\N` and true -1 or 1.
Lines Normalized(const Lines& lines, char separator) {
  Lines rows;
  for (const std::string& line : lines) {
    std::string row;
    for (const std::string& field : Split(line, separator))
      row += kSeparator + (field == "\\N" ? "" : field == "-1" ? "1" : field);
    rows.push_back(row.substr(1));
  }
  return Sorted(rows);
}

/// In an order in which no row refers to one that is not there yet.
const std::vector<std::pair<std::string, Lines>> kSmallLeague{
    {"position info", {"1|QB|Quarterback", "2|DEF|Defense"}},
    {"team info", {"1|ASH|Ashbourne|Lanterns|2", "2|BRA|Brackwater||2"}},
    {"player info", {"1|Ann|Lee|1|1|0", "2|Bob|Moe|1||0", "3|Cy|Noe||2|1", "4||Orr|1|1|0"}},
    {"manager info", {"1|Alda|Bright", "2|Benno|Marr", "3|Celeste|Dun"}},
    {"prize type info", {"1|Weekly", "2|Final"}},
    {"prize info", {"1|High score|1", "2|Champion|2"}},
    {"season info", {"1|2024|2|2|50|14|17|1|0|0|1", "2|2023|2|1|40|13|16|0|0|0|0"}},
    {"playing info", {"1|1|1|2", "1|2|0|1", "2|3|0|"}},
    {"money distribution info", {"1|1|10", "1|2|90", "2|1|5"}},
    {"draft info", {"1|1|2|1|", "1|2|1||1", "1|3|1||"}},
    {"winning info", {"1|1|1|1|1", "2|1|2|2|"}},
    {"settings", {"1|1"}}};

}  // namespace

Lines Sorted(Lines lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

Tables RowsOf(jet::Database& database) {
  Tables tables;
  for (const jet::TableInfo& table : database.Tables()) {
    if (table.isSystem) continue;
    Lines& lines = tables[table.name];
    const auto rows = Open(database, table.name);
    for (; !rows->Eof(); rows->MoveNext()) {
      std::string line;
      for (const jet::ColumnSpec& column : table.columns)
        line += kSeparator + Text(rows->Fields(column.name).Value());
      lines.push_back(line.substr(1));
    }
    lines = Sorted(lines);
  }
  return tables;
}

Lines ExpectedRows(const std::string& table) {
  Lines lines;
  std::istringstream text(jet::test::ReadWholeText(jet::test::FixturePath("expected/" + table + ".tsv")));
  std::string line;
  for (std::getline(text, line); std::getline(text, line);)
    lines.push_back(line);
  return Normalized(lines, '\t');
}

Lines ExportedRows(const std::string& path, const std::string& table) {
  Lines lines = Split(jet::test::MdbExport(path, table), jet::test::kMdbExportRowEnd);
  lines.pop_back();
  lines.erase(lines.begin());  // the names of the columns
  return Normalized(lines, jet::test::kMdbExportFieldEnd);
}

Tables RowsOf(const HLIData::ISeasonInfo& season) {
  Tables tables;
  tables["season info"] = {Line(season.ID(), season.Year(), season.NoOfManagers(), season.NoOfRounds(),
                                season.MoneyContribution(), season.NoOfRegularWeeks(),
                                season.TotalNoOfWeeks(), season.IsRankingLocked(), season.IsSeasonLocked(),
                                season.IsDraftLocked(), season.HasSeasonStarted())};
  for (const auto& manager : *season.Managers()) {
    tables["playing info"].push_back(
        Line(season.ID(), manager->ID(), manager->IsFeePaid(), OrNull(manager->Rank())));
  }
  for (const auto& prize : *season.Prizes())
    tables["money distribution info"].push_back(Line(season.ID(), prize->ID(), prize->Amount()));
  for (const auto& winning : *season.Winnings()) {
    tables["winning info"].push_back(Line(winning->ID(), winning->SeasonID(), winning->PrizeID(),
                                          winning->ManagerID(), OrNull(winning->Week())));
  }
  for (const auto& pick : *season.Drafts()) {
    if (!pick->Manager()) continue;
    const auto picked = pick->PlayerOrTeam();
    const PickType type = picked ? picked->PickType() : PickType::None;
    tables["draft info"].push_back(Line(season.ID(), pick->DraftNo(), pick->Manager()->ID(),
                                        OrNull(type == PickType::Player ? picked->PickID() : 0),
                                        OrNull(type == PickType::Team ? picked->PickID() : 0)));
  }
  for (auto& [name, lines] : tables)
    lines = Sorted(lines);
  return tables;
}

Lines RowsOfSeason(const Tables& tables, const std::string& table, std::int32_t seasonID) {
  const std::size_t column = table == "winning info" ? 1 : 0;
  Lines lines;
  for (const std::string& line : tables.at(table)) {
    if (Split(line, kSeparator).at(column) == std::to_string(seasonID)) lines.push_back(line);
  }
  return lines;
}

void AddRows(jet::Database& database, const std::string& table, const Lines& rows) {
  const auto recordset = Open(database, table);
  for (const std::string& row : rows) {
    recordset->AddNew();
    std::size_t column = 0;
    for (const std::string& field : Split(row, kSeparator)) {
      if (!field.empty()) recordset->Fields(column).Value(field);
      ++column;
    }
    recordset->Update();
  }
}

std::vector<std::byte> SmallLeague(bool isLoose, const Tables& added) {
  const auto files = std::make_shared<jet::test::MemoryFileSystem>();
  jet::DBEngine engine({.files = files, .observer = {}});
  files->Put("small.mdb", jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb")));
  auto database = engine.OpenDatabase("small.mdb", true, false, HLServiceUtils::GetConnectString());
  if (isLoose) {
    jet::CreateOptions options;
    options.password = HLServiceUtils::kDatabasePassword;
    const auto loose = engine.CreateDatabase("loose.mdb", options);
    for (const jet::TableInfo& table : database->Tables()) {
      if (!table.isSystem) loose->CreateTable({table.name, table.columns, {}});
    }
    database = loose;
  }
  database->BeginTrans();
  for (const auto& [table, rows] : kSmallLeague)
    AddRows(*database, table, rows);
  for (const auto& [table, rows] : added)
    AddRows(*database, table, rows);
  database->CommitTrans();
  const std::string name = database->Name();
  database->Close();
  return files->Get(name);
}

}  // namespace HLDataSrvc::test
