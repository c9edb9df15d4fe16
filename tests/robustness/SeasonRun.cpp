#include "tests/robustness/SeasonRun.h"

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "storage/HLServiceUtils.h"
#include "tests/robustness/SeasonScript.h"
#include "tests/support/MemoryFileSystem.h"

namespace HLDataSrvc::test {

using jet::test::MemoryFileSystem;

void Acknowledged::OnCall(const char* call, const std::string&) {
  if (m_isChange && m_isWell()) {
    ++m_count;
    if (m_onChange) m_onChange();
  }
  const std::string name = call;
  m_isChange = name == "Recordset.Update" || name == "Recordset.Delete";
}

Tables SoundRows(const std::shared_ptr<jet::FileSystem>& files, const std::string& name) {
  const auto database = jet::DBEngine({.files = files, .observer = {}})
                            .OpenDatabase(name, true, false, HLServiceUtils::GetConnectString());
  const jet::CheckReport report = database->Check();
  EXPECT_TRUE(report.findings.empty()) << report.findings.front();
  Tables rows = RowsOf(*database);
  database->Close();
  return rows;
}

std::vector<Tables> SeasonStates(const std::vector<std::byte>& start) {
  const auto files = std::make_shared<MemoryFileSystem>();
  const std::string name = ScriptFile("league");
  const std::string log = jet::LogNameFor(name);
  files->Put(name, start);
  std::vector<Tables> states;
  const auto keep = [&] {
    const auto copy = std::make_shared<MemoryFileSystem>();
    copy->Put(name, files->Get(name));
    if (files->Exists(log)) copy->Put(log, files->Get(log));
    states.push_back(SoundRows(copy, name));
  };
  keep();
  HLServiceUtils::ReplaceEngine(
      {.files = files, .observer = std::make_shared<Acknowledged>([] { return true; }, keep)});
  SeasonScript script(std::make_shared<ScriptHost>("league"));
  for (int step = 0; step < SeasonScript::kSteps; ++step)
    script.Play(step);
  script.Close();
  HLServiceUtils::ReplaceEngine({});
  EXPECT_TRUE(SoundRows(files, name) == states.back());
  return states;
}

void ExpectAcknowledged(const std::vector<Tables>& states, const Tables& rows, std::size_t acknowledged) {
  ASSERT_LT(acknowledged, states.size());
  EXPECT_TRUE(rows == states[acknowledged] ||
              (acknowledged + 1 < states.size() && rows == states[acknowledged + 1]))
      << "not the rows after " << acknowledged << " changes";
}

}  // namespace HLDataSrvc::test
