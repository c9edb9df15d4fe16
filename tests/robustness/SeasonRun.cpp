#include "tests/robustness/SeasonRun.h"

#include <algorithm>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "storage/HLServiceUtils.h"
#include "tests/robustness/SeasonScript.h"
#include "tests/support/MemoryFileSystem.h"

namespace HLDataSrvc::test {

using jet::test::MemoryFileSystem;

void Acknowledged::OnCall(const char* call, const std::string&) {
  if (m_isCommit && m_isWell()) {
    ++m_count;
    if (m_onCommit) m_onCommit();
  }
  m_isCommit = call == std::string("Database.CommitTrans");
}

namespace {

/// Notes the rows that a service sees after each change, and which changes were made before each commit.
class StateKeeper final : public jet::CallObserver {
 public:
  explicit StateKeeper(SeasonStates& states) : m_states(states) {}
  void OnCall(const char* call, const std::string&) override {
    if (m_isReading) return;
    KeepAfter(std::exchange(m_last, call));
  }
  void Watch(SeasonScript& script) { m_script = &script; }
  /// The script has ended.
  void End() { KeepAfter(std::exchange(m_last, {})); }

 private:
  void KeepAfter(const std::string& call) {
    if (call == "Recordset.Update" || call == "Recordset.Delete") {
      m_isReading = true;
      m_states.rows.push_back(RowsOf(m_script->Database()));
      m_isReading = false;
    }
    if (call == "Database.CommitTrans") m_states.commits.push_back(m_states.rows.size() - 1);
  }

  SeasonStates& m_states;
  SeasonScript* m_script = nullptr;
  std::string m_last;
  bool m_isReading = false;
};

}  // namespace

Tables SoundRows(const std::shared_ptr<jet::FileSystem>& files, const std::string& name) {
  const auto database = jet::DBEngine({.files = files, .observer = {}})
                            .OpenDatabase(name, true, false, HLServiceUtils::GetConnectString());
  const jet::CheckReport report = database->Check();
  EXPECT_TRUE(report.findings.empty()) << report.findings.front();
  Tables rows = RowsOf(*database);
  database->Close();
  return rows;
}

SeasonStates PlayedSeason(const std::vector<std::byte>& start) {
  const auto files = std::make_shared<MemoryFileSystem>();
  const std::string name = ScriptFile("league");
  files->Put(name, start);
  SeasonStates states;
  states.rows.push_back(SoundRows(files, name));
  states.commits.push_back(0);
  const auto keeper = std::make_shared<StateKeeper>(states);
  HLServiceUtils::ReplaceEngine({.files = files, .observer = keeper});
  SeasonScript script(std::make_shared<ScriptHost>("league"));
  keeper->Watch(script);
  for (int step = 0; step < SeasonScript::kSteps; ++step)
    script.Play(step);
  keeper->End();
  script.Close();
  HLServiceUtils::ReplaceEngine({});
  EXPECT_TRUE(SoundRows(files, name) == states.Last());
  return states;
}

void ExpectWhole(const SeasonStates& states, const Tables& rows, std::size_t commits) {
  ASSERT_LE(commits, states.Commits());
  EXPECT_TRUE(rows == states.After(commits) ||
              (commits < states.Commits() && rows == states.After(commits + 1)))
      << "not the rows after " << commits << " commits";
}

void ExpectUpToAnError(const SeasonStates& states, const Tables& rows, std::size_t commits) {
  ASSERT_LE(commits, states.Commits());
  const auto from = states.rows.begin() + static_cast<std::ptrdiff_t>(states.commits[commits]);
  const auto to = commits < states.Commits()
                      ? states.rows.begin() + static_cast<std::ptrdiff_t>(states.commits[commits + 1]) + 1
                      : states.rows.end();
  EXPECT_NE(std::find(from, to, rows), to) << "not rows from commit " << commits << " on";
}

}  // namespace HLDataSrvc::test
