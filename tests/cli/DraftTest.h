#pragma once

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HLLeague/DraftSession.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/Picks.h"
#include "cli/commands/Context.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "storage/HLServiceUtils.h"
#include "tests/support/TestFiles.h"

namespace cli::test {

using namespace HLLeague;

/// Fails the engine's call of a number, and perhaps every one after it, and keeps the calls.
struct FailingEngine final : jet::CallObserver {
  void OnCall(const char* call, const std::string& detail) override {
    calls.push_back(std::string(call) + " " + detail);
    if (callsLeft < 0 || --callsLeft >= 0) return;
    if (!failsOnce) callsLeft = 0;
    throw jet::Error(jet::ErrorNumber::DiskFull, std::string("There is no room for ") + call + ".");
  }
  int callsLeft = -1;  ///< calls that still succeed; -1: all do
  std::ptrdiff_t Count(const std::string& text) const {
    return std::count_if(calls.begin(), calls.end(),
                         [&](const std::string& call) { return call.find(text) != std::string::npos; });
  }
  bool failsOnce = false;
  std::vector<std::string> calls;
};

/// A copy of the league of the fixtures, whose current season is one of 4 managers and 3 rounds with all of
/// its picks made, open as a command of the program has it open.
class DraftTest : public testing::Test {
 protected:
  static constexpr std::int32_t kSeason = 5;

  DraftTest() {
    std::filesystem::copy_file(jet::test::FixturePath("league.mdb"), m_folder.File("Halcyra - Live.mdb"));
    HLDataSrvc::HLServiceUtils::ReplaceEngine({.files = {}, .observer = m_engine});
    Reopen();
    UseSeason(kSeason);
  }
  ~DraftTest() override {
    m_context.reset();
    HLDataSrvc::HLServiceUtils::ReplaceEngine({});
  }

  HLLeague::League& League() { return m_context->OpenLeague(); }
  DraftSession& Draft() { return m_context->Draft(); }

  /// Closes the league and opens it again, with nothing in memory.
  void Reopen() {
    m_context.reset();
    m_context = std::make_unique<Context>(m_output, m_messages);
    m_context->folder = m_folder.Path();
  }
  /// Makes a season the current one in the file.
  void UseSeason(std::int32_t id) {
    League().Service().GetSettings()->CurrentSeason(id);
    League().Service().SaveSettings();
  }
  /// The picks that a fresh service finds in the file.
  Picks StoredPicks() {
    Reopen();
    return PicksOf(*CurrentSeason(League()));
  }

  /// The draft rows of the file as text, "5 1 m13 p5 t-", by season and number.
  std::map<std::pair<int, int>, std::string> Rows() {
    m_context.reset();
    std::map<std::pair<int, int>, std::string> rows;
    {
      const auto database = jet::DBEngine().OpenDatabase(m_folder.File("Halcyra - Live.mdb"), false, true,
                                                         jet::test::kFixtureConnect);
      const auto found = database->OpenRecordset("select * from [draft info]");
      for (; !found->Eof(); found->MoveNext()) {
        const auto text = [&](const char* column) {
          const jet::Value value = found->Fields(column).Value();
          return value.IsNull() ? std::string("-") : value.ToText();
        };
        rows[{std::stoi(text("season id")), std::stoi(text("draft no"))}] =
            "m" + text("manager id") + " p" + text("player id") + " t" + text("team id");
      }
    }
    Reopen();
    return rows;
  }
  /// The row that a pick should have.
  static std::string RowOf(const Pick& pick) {
    const std::string id = std::to_string(pick.id);
    const bool isPlayer = pick.type == HLIData::PickType::Player;
    return "m" + std::to_string(*pick.managerID) + (isPlayer ? " p" + id + " t-" : " p- t" + id);
  }

  jet::test::TempFolder m_folder;
  std::shared_ptr<FailingEngine> m_engine = std::make_shared<FailingEngine>();
  Output m_output{stdout};
  Messages m_messages{stderr, m_output, false};
  std::unique_ptr<Context> m_context;
};

}  // namespace cli::test
