#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/dao/Database.h"
#include "storage/HLServiceUtils.h"
#include "storage/LeagueCsv.h"
#include "storage/LeagueFile.h"
#include "tests/support/Processes.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc::LeagueCsv {
namespace {

class LeagueCsvTest : public testing::Test {
 protected:
  LeagueCsvTest() {
    CreateLeagueFile(m_path);
    m_database =
        HLServiceUtils::Engine().OpenDatabase(m_path, true, false, HLServiceUtils::GetConnectString());
  }

  void Write(const std::string& file, const std::string& text) const {
    std::ofstream(m_folder.File(file), std::ios::binary) << text;
  }
  std::string Rows(const std::string& table) const {
    std::string text;
    const auto rows = m_database->OpenRecordset("select * from [" + table + "]");
    for (; !rows->Eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->FieldCount(); ++i) {
        const jet::Value value = rows->Fields(i).Value();
        text += (i == 0 ? "" : ",") + (value.IsNull() ? "Null" : value.ToText());
      }
      text += ";";
    }
    return text;
  }
  std::string Refusal() const {
    try {
      FillFromFolder(*m_database, m_folder.Path());
    } catch (const CsvError& error) {
      return error.what();
    }
    return "nothing was refused";
  }

  jet::test::TempFolder m_folder;
  const std::string m_path = m_folder.File("league.mdb");
  std::shared_ptr<jet::Database> m_database;
};

TEST_F(LeagueCsvTest, SampleLeagueFillsEveryTable) {
  std::string filled;
  for (const Filled& part : FillFromFolder(*m_database, HALCYRA_SAMPLE_LEAGUE)) {
    filled += part.file + " " + part.table + " " + std::to_string(part.rows) + "; ";
  }
  EXPECT_EQ(filled,
            "positions.csv position info 6; teams.csv team info 32; prize-types.csv prize type info 4; "
            "prizes.csv prize info 12; players.csv player info 480; managers.csv manager info 12; ");
  m_database->Close();
  EXPECT_EQ(jet::test::IndependentCheck(m_path, /*strict=*/true, HLServiceUtils::kDatabasePassword), "");
  if (!jet::test::RunsPrograms()) GTEST_SKIP() << "independent readers run on the build machine only";
  ASSERT_TRUE(jet::test::HasMdbExport());
  const std::string teams = jet::test::MdbExport(m_path, "team info");
  EXPECT_NE(teams.find("\x1E"
                       "1\x1F"
                       "AMB\x1F"
                       "Amberfall\x1F"
                       "Herons\x1F"
                       "6\x1E"),
            teams.npos)
      << teams;
}

TEST_F(LeagueCsvTest, ColumnsComeInAnyOrderAndMayBeLeftOut) {
  Write("positions.csv",
        "\xEF\xBB\xBF"
        "DESC,Id\r\n\"Wide, very wide receiver\",3\r\n,4\r\n");
  Write("players.csv",
        "is retired,id,last name,position id,team id\n"
        "yes,1,Zo\xC3\xAB,3,\nFALSE,2,Alden,,\n, 3 ,Bo, 4 ,\n");
  const auto filled = FillFromFolder(*m_database, m_folder.Path() + "\\");
  EXPECT_EQ(filled.size(), 2u);
  EXPECT_EQ(Rows("position info"), "3,Null,Wide, very wide receiver;4,Null,Null;");
  EXPECT_EQ(Rows("player info"),
            "1,Null,Zo\xC3\xAB,3,Null,True;2,Null,Alden,Null,Null,False;3,Null,Bo,4,Null,False;");
}

TEST_F(LeagueCsvTest, BadLineIsNamedAndNothingOfItsFileIsKept) {
  Write("positions.csv", "id,abbr,desc\n1,QB,Quarterback\n");
  const std::string head = "id,first name,last name,position id,team id,is retired\n1,Ann,Lee,1,,0\n";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"2,Ann,Lee,1,,\n1,Bo,Lee,1,,\n", "players.csv, line 4: "},  // the engine names the duplicate key
      {"2,Ann\n", "players.csv, line 3: The line has 2 fields where the first line names 6."},
      {"x,Ann,Lee,1,,\n",
       "players.csv, line 3: The column \"id\" takes a whole number from 1 to 2147483647, not \"x\"."},
      {",Ann,Lee,1,,\n",
       "players.csv, line 3: The column \"id\" takes a whole number from 1 to 2147483647, not \"\"."},
      {"0,Ann,Lee,1,,\n", "players.csv, line 3: The column \"id\""},
      {"2147483648,Ann,Lee,1,,\n", "players.csv, line 3: The column \"id\""},
      {"2,Ann,Lee,2,,\n",
       "players.csv, line 3: The column \"position id\" refers to 2, which [position info] does not hold."},
      {"2,Ann,Lee,1,5,\n",
       "players.csv, line 3: The column \"team id\" refers to 5, which [team info] does not hold."},
      {"2,Ann,Lee,1,,maybe\n",
       "players.csv, line 3: The column \"is retired\" takes true, false, yes, no, 1 or 0, "
       "not \"maybe\"."},
      {"2,Ann," + std::string(51, 'x') + ",1,,\n", "players.csv, line 3: "},
      {"2,\"Ann\nMary\",Lee,1,,\n3,\"Ann,Lee,1,,\n", "players.csv, line 5: A quoted field is not closed."},
  };
  for (const auto& [lines, refusal] : cases) {
    Write("players.csv", head + lines);
    const std::string told = Refusal();
    EXPECT_EQ(told.substr(0, refusal.size()), refusal) << told;
    EXPECT_EQ(Rows("player info"), "");
    EXPECT_EQ(Rows("position info"), "1,QB,Quarterback;") << "files read before stay";
    const auto positions = m_database->OpenRecordset("select * from [position info]");
    positions->Delete();
  }
  m_database->Close();
  EXPECT_EQ(jet::test::IndependentCheck(m_path, /*strict=*/true, HLServiceUtils::kDatabasePassword), "");
}

TEST_F(LeagueCsvTest, FirstLineMustNameColumnsOfTheTable) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "managers.csv, line 1: The line with the names of the columns is missing."},
      {"id,nick\n", "managers.csv, line 1: [manager info] has no column \"nick\"."},
      {"id,ID\n", "managers.csv, line 1: The column \"ID\" is named twice."},
      {"\nfirst name\nAnn\n", "managers.csv, line 2: The column \"id\" is missing."},
  };
  for (const auto& [text, refusal] : cases) {
    Write("managers.csv", text);
    EXPECT_EQ(Refusal(), refusal);
  }
}

TEST_F(LeagueCsvTest, FolderOrFileThatCannotBeReadIsTheSystemsError) {
  const auto number = [&](const std::string& folder) {
    try {
      FillFromFolder(*m_database, folder);
    } catch (const jet::Error& error) {
      return error.Number();
    }
    return jet::ErrorNumber{};
  };
  EXPECT_EQ(number(m_folder.File("missing")), jet::ErrorNumber::PathNotFound);
  std::filesystem::create_directory(m_folder.File("teams.csv"));
  const jet::ErrorNumber folder = number(m_folder.Path());  // systems differ in what they say
  EXPECT_TRUE(folder == jet::ErrorNumber::ReadFailed || folder == jet::ErrorNumber::PermissionDenied);
}

}  // namespace
}  // namespace HLDataSrvc::LeagueCsv
