#include <filesystem>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueFile.h"
#include "tests/support/Processes.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc {
namespace {

using HLServiceUtils::kDatabasePassword;
using jet::test::IndependentCheck;

std::shared_ptr<jet::Database> Open(const std::string& path) {
  return jet::DBEngine().OpenDatabase(path, true, false, HLServiceUtils::GetConnectString());
}

template <typename Call>
jet::ErrorNumber NumberOfError(Call&& call) {
  try {
    call();
  } catch (const jet::Error& error) {
    return error.Number();
  }
  ADD_FAILURE() << "no error was raised";
  return {};
}

std::string ColumnsOf(const jet::IndexSpec& index) {
  std::string columns;
  for (const auto& column : index.columns)
    columns += (columns.empty() ? "" : ", ") + column.name;
  return columns;
}

void AddRow(jet::Database& database, const std::string& table,
            const std::vector<std::pair<std::string, jet::Value>>& values) {
  const auto rows = database.OpenRecordset("select * from [" + table + "]");
  rows->AddNew();
  for (const auto& [column, value] : values)
    rows->Fields(column).Value(value);
  rows->Update();
}

class LeagueFileTest : public testing::Test {
 protected:
  std::vector<std::string> FilesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  jet::test::TempFolder m_folder;
  const std::string m_path = m_folder.File("Halcyra - Live.mdb");
};

TEST_F(LeagueFileTest, IndependentReadersFindItSound) {
  CreateLeagueFile(m_folder.Path() + "\\Halcyra - Live.mdb");
  EXPECT_EQ(FilesInFolder(), std::vector<std::string>{"Halcyra - Live.mdb"});
  EXPECT_EQ(IndependentCheck(m_path, /*strict=*/true, kDatabasePassword), "");
  if (!jet::test::RunsPrograms()) GTEST_SKIP() << "independent readers run on the build machine only";
  ASSERT_TRUE(jet::test::HasMdbExport());
  const std::string settings = jet::test::MdbExport(m_path, "settings");
  EXPECT_TRUE(
      settings.ends_with("\x1E"
                         "1\x1F"
                         "0\x1E"))
      << settings;
  EXPECT_EQ(NumberOfError([&] { jet::DBEngine().OpenDatabase(m_path, true, false, ";pwd=TALWEP83RN"); }),
            jet::ErrorNumber::PasswordRejected);
}

TEST_F(LeagueFileTest, HasTheTablesWithTheirKeysAndIndexes) {
  CreateLeagueFile(m_path);
  const auto database = Open(m_path);
  std::vector<std::string> tables;
  for (const auto& table : database->Tables()) {
    if (table.isSystem) continue;
    std::string primary = "none";
    std::set<std::string> others;
    for (const auto& index : table.indexes) {
      if (index.primary) {
        primary = ColumnsOf(index);
        EXPECT_TRUE(index.unique);
      } else if (!index.foreign && !index.unique) {
        others.insert(ColumnsOf(index));
      }
    }
    std::string line = table.name + ": " + primary;
    for (const auto& other : others)
      line += "; " + other;
    tables.push_back(line);
  }
  EXPECT_EQ(tables, (std::vector<std::string>{
                        "draft info: season id, draft no; manager id; player id; season id; team id",
                        "manager info: id",
                        "money distribution info: season id, prize id; prize id; season id",
                        "player info: id; position id; team id",
                        "playing info: season id, manager id; manager id; season id",
                        "position info: id",
                        "prize info: id; type id",
                        "prize type info: type id",
                        "season info: id",
                        "settings: id",
                        "team info: id; position id",
                        "winning info: id; manager id; prize id; season id",
                    }));
}

TEST_F(LeagueFileTest, HasDefaultsInSeasonsOnlyAndTakesNoEmptyTexts) {
  CreateLeagueFile(m_path);
  const auto database = Open(m_path);
  for (const auto& table : database->Tables()) {
    if (table.isSystem) continue;
    for (const auto& column : table.columns) {
      const bool hasDefault = table.name == "season info" && column.name != "id";
      EXPECT_EQ(column.defaultValue.has_value(), hasDefault) << table.name << "." << column.name;
      EXPECT_FALSE(column.type == jet::ColumnType::Text && column.allowZeroLength)
          << table.name << "." << column.name;
    }
  }
  AddRow(*database, "season info", {{"id", 1}});
  const auto season = database->OpenRecordset("select * from [season info]");
  for (std::size_t i = 1; i < season->FieldCount(); ++i) {
    const auto& field = season->Fields(i);
    EXPECT_EQ(field.Value().ToText(), field.Type() == jet::ColumnType::YesNo ? "False" : "0") << field.Name();
  }
  EXPECT_EQ(NumberOfError([&] {
              AddRow(*database, "manager info", {{"id", 1}, {"first name", ""}});
            }),
            jet::ErrorNumber::ZeroLengthText);
}

TEST_F(LeagueFileTest, EnforcesReferencesToMasterRecordsAndToNothingElse) {
  CreateLeagueFile(m_path);
  const auto database = Open(m_path);
  for (const auto& relation : database->Relations()) {
    EXPECT_TRUE(relation.enforced);
    EXPECT_FALSE(relation.cascadeDeletes || relation.cascadeUpdates);
  }
  EXPECT_EQ(database->Relations().size(), 8u);
  // No season, team or prize type is there; rows that refer to one are taken anyway.
  AddRow(*database, "position info", {{"id", 1}});
  AddRow(*database, "player info", {{"id", 1}, {"position id", 1}, {"team id", 99}});
  AddRow(*database, "manager info", {{"id", 1}});
  AddRow(*database, "prize info", {{"id", 1}, {"type id", 99}});
  AddRow(*database, "playing info", {{"season id", 99}, {"manager id", 1}});
  AddRow(*database, "draft info",
         {{"season id", 99}, {"draft no", 1}, {"manager id", 1}, {"player id", 1}, {"team id", 99}});
  AddRow(*database, "money distribution info", {{"season id", 99}, {"prize id", 1}});
  AddRow(*database, "winning info", {{"id", 1}, {"season id", 99}, {"manager id", 1}, {"prize id", 1}});

  for (const char* table : {"player info", "manager info", "prize info", "position info"}) {
    const auto rows = database->OpenRecordset("select * from [" + std::string(table) + "]");
    EXPECT_EQ(NumberOfError([&] { rows->Delete(); }), jet::ErrorNumber::RowIsReferred) << table;
  }
  using Row = std::vector<std::pair<std::string, jet::Value>>;
  const std::vector<std::pair<const char*, Row>> orphans = {
      {"player info", {{"id", 2}, {"position id", 99}}},
      {"team info", {{"id", 2}, {"position id", 99}}},
      {"playing info", {{"season id", 1}, {"manager id", 99}}},
      {"draft info", {{"season id", 1}, {"draft no", 2}, {"manager id", 99}}},
      {"draft info", {{"season id", 1}, {"draft no", 2}, {"player id", 99}}},
      {"winning info", {{"id", 2}, {"manager id", 99}}},
      {"winning info", {{"id", 2}, {"prize id", 99}}},
      {"money distribution info", {{"season id", 1}, {"prize id", 99}}},
  };
  for (const auto& orphan : orphans) {
    EXPECT_EQ(NumberOfError([&] { AddRow(*database, orphan.first, orphan.second); }),
              jet::ErrorNumber::NoReferredRow)
        << orphan.first << "." << orphan.second.back().first;
  }
  database->Close();
  EXPECT_EQ(IndependentCheck(m_path, /*strict=*/true, kDatabasePassword), "");
}

TEST_F(LeagueFileTest, ReplacesAFileOnlyWhenToldTo) {
  std::ofstream(m_path) << "something else";
  EXPECT_EQ(NumberOfError([&] { CreateLeagueFile(m_path); }), jet::ErrorNumber::ObjectExists);
  EXPECT_EQ(jet::test::ReadWholeText(m_path), "something else");
  CreateLeagueFile(m_path, {.overwrite = true, .fill = {}});
  EXPECT_EQ(IndependentCheck(m_path, /*strict=*/true, kDatabasePassword), "");
}

TEST_F(LeagueFileTest, DoesNotReplaceAFileThatIsOpen) {
  CreateLeagueFile(m_path);
  const auto before = jet::test::ReadWholeFile(m_path);
  auto open = Open(m_path);
  EXPECT_EQ(NumberOfError([&] { CreateLeagueFile(m_path, {.overwrite = true, .fill = {}}); }),
            jet::ErrorNumber::FileHeldExclusively);
  open.reset();
  EXPECT_TRUE(jet::test::ReadWholeFile(m_path) == before);
}

TEST_F(LeagueFileTest, LeavesNothingBehindWhenFillingFails) {
  const auto fail = [](jet::Database&) { throw std::runtime_error("no rows today"); };
  EXPECT_THROW(CreateLeagueFile(m_path, {.fill = fail}), std::runtime_error);
  EXPECT_TRUE(FilesInFolder().empty());

  std::ofstream(m_path) << "something else";
  EXPECT_THROW(CreateLeagueFile(m_path, {.overwrite = true, .fill = fail}), std::runtime_error);
  EXPECT_EQ(FilesInFolder(), std::vector<std::string>{"Halcyra - Live.mdb"});
  EXPECT_EQ(jet::test::ReadWholeText(m_path), "something else");
  EXPECT_EQ(NumberOfError([&] { CreateLeagueFile(m_folder.File("missing/live.mdb")); }),
            jet::ErrorNumber::PathNotFound);
}

}  // namespace
}  // namespace HLDataSrvc
