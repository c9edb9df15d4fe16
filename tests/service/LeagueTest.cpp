#include "tests/service/LeagueTest.h"

#include <algorithm>
#include <utility>

namespace HLDataSrvc::test {
namespace {

using Files = jet::test::MemoryFileSystem;

constexpr char kCopy[] = "copy.mdb";

std::shared_ptr<Files> CopyOf(const std::array<std::vector<std::byte>, 2>& fileAndLog) {
  const auto files = std::make_shared<Files>();
  files->Put(kCopy, fileAndLog[0]);
  if (!fileAndLog[1].empty()) files->Put(jet::LogNameFor(kCopy), fileAndLog[1]);
  return files;
}

std::shared_ptr<jet::Database> OpenCopy(const std::shared_ptr<Files>& files) {
  return jet::DBEngine({.files = files, .observer = {}})
      .OpenDatabase(kCopy, true, false, HLServiceUtils::GetConnectString());
}

}  // namespace

LeagueTest::LeagueTest() {
  HLServiceUtils::ReplaceEngine({.files = m_files, .observer = m_engine});
  jet::test::WriteWholeFile(m_folder.File("Halcyra - Live.mdb"), {});  // what the host finds
}

void LeagueTest::Open(std::vector<std::byte> bytes) {
  m_service.reset();
  m_files->Put(Path(), std::move(bytes));
  Restart();
}

void LeagueTest::Restart() {
  m_service.reset();
  m_service = std::make_shared<DataService>(m_host);
  ASSERT_TRUE(Initialize()) << m_message;
  m_engine->calls.clear();
}

LeagueTest::FileBytes LeagueTest::Files() const {
  FileBytes files{m_files->Get(Path()), {}};
  const std::string log = jet::LogNameFor(Path());
  if (m_files->Exists(log)) files[1] = m_files->Get(log);
  return files;
}

std::vector<std::byte> LeagueTest::Bytes() const {
  const auto copy = CopyOf(Files());
  OpenCopy(copy)->Close();
  return copy->Get(kCopy);
}

const Tables& LeagueTest::Stored() {
  if (FileBytes files = Files(); m_stored.empty() || files != m_readFrom) {
    m_stored = RowsOf(*OpenCopy(CopyOf(files)));
    m_readFrom = std::move(files);
  }
  return m_stored;
}

Tables LeagueTest::Seen() {
  m_engine->isPaused = true;
  Tables rows = RowsOf(m_service->Database());
  m_engine->isPaused = false;
  return rows;
}

void LeagueTest::ExpectStored(const Tables& before, std::int32_t seasonID, const Tables& written) {
  const Tables& after = Stored();
  Tables expected = before;
  for (const auto& [table, rows] : written) {
    Lines& lines = expected[table];
    for (const std::string& line : RowsOfSeason(before, table, seasonID))
      lines.erase(std::find(lines.begin(), lines.end(), line));
    lines.insert(lines.end(), rows.begin(), rows.end());
    lines = Sorted(lines);
    if (!jet::test::HasMdbExport()) continue;
    const std::string path = m_folder.File("exported.mdb");
    jet::test::WriteWholeFile(path, Bytes());
    EXPECT_EQ(ExportedRows(path, table), after.at(table));
  }
  EXPECT_EQ(after, expected);
}

std::vector<std::string> LeagueTest::Steps() {
  std::vector<std::string> steps;
  for (const std::string& call : std::exchange(m_engine->calls, {})) {
    const std::string name = call.substr(0, call.find(' '));
    const std::string detail = call.size() > name.size() ? call.substr(name.size() + 1) : "";
    if (name == "Database.OpenRecordset") {
      steps.push_back(detail);
    } else if (name == "Field.Value=") {
      steps.back() += " | " + detail;
    } else if (name == "Recordset.FindFirst") {
      steps.back() += " | FindFirst " + detail;
    } else if (name == "Recordset.AddNew" || name == "Recordset.Edit" || name == "Recordset.Update" ||
               name == "Recordset.Delete" || name == "Recordset.Close") {
      steps.back() += " | " + name.substr(name.find('.') + 1);
    }
  }
  return steps;
}

std::vector<std::string> LeagueTest::Statements() {
  std::vector<std::string> statements = Steps();
  for (std::string& step : statements)
    step = step.substr(0, step.find(" | "));
  return statements;
}

std::vector<std::string> LeagueTest::Boxes() {
  std::vector<std::string> texts;
  for (const RecordingHost::Message& message : std::exchange(m_host->messages, {})) {
    EXPECT_EQ(message.title, "Halcyra Service");
    texts.push_back(message.text);
  }
  return texts;
}

}  // namespace HLDataSrvc::test
