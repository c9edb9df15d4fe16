#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "service/DataService.h"
#include "storage/HLServiceUtils.h"
#include "tests/support/RecordingHost.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc::test {

/// Keeps the calls that reach the engine, and fails the chosen ones.
struct EngineObserver final : jet::CallObserver {
  void OnCall(const char* call, const std::string& detail) override {
    if (isPaused) return;
    calls.push_back(detail.empty() ? call : std::string(call) + " " + detail);
    if (onCall) onCall(call);
  }
  std::size_t Count(const std::string& call) const {
    std::size_t count = 0;
    for (const auto& made : calls)
      count += made.starts_with(call) ? 1u : 0u;
    return count;
  }
  std::vector<std::string> calls;
  std::function<void(const std::string&)> onCall;
  bool isPaused = false;
};

/// A folder with copies of fixtures under the names of a league, a host that finds them, and a service. The
/// engine of the thread passes its calls to `m_engine`.
class ServiceTest : public testing::Test {
 protected:
  ServiceTest() { HLServiceUtils::ReplaceEngine({.files = {}, .observer = m_engine}); }
  ~ServiceTest() override {
    m_service.reset();
    HLServiceUtils::ReplaceEngine({});
  }

  void Put(const std::string& fixture, const std::string& name = "Halcyra - Live.mdb") const {
    const std::string beside = m_folder.File("beside.tmp");
    std::filesystem::copy_file(jet::test::FixturePath(fixture), beside);
    std::filesystem::rename(beside, m_folder.File(name));  // also in place of a file that is open
  }
  std::string PathOf(const std::string& name) const { return m_folder.Path() + "\\" + name; }

  bool Initialize(HLIData::DBType kind = HLIData::DBType::Live) {
    m_message.clear();
    return m_service->Initialize(kind, m_message);
  }

  /// Whether a file is closed: another engine can open it exclusively.
  bool IsFree(const std::string& name) const {
    try {
      jet::DBEngine().OpenDatabase(PathOf(name), true, false, HLServiceUtils::GetConnectString());
    } catch (const std::exception&) {
      return false;
    }
    return true;
  }

  /// The settings rows as they stand in a closed file: "id=season;" for each.
  std::string StoredSettings(const std::string& name = "Halcyra - Live.mdb") const {
    const auto database =
        jet::DBEngine().OpenDatabase(PathOf(name), true, false, HLServiceUtils::GetConnectString());
    std::string text;
    const auto rows = database->OpenRecordset("select * from [settings]");
    for (; !rows->Eof(); rows->MoveNext()) {
      text += rows->Fields("id").Value().ToText() + "=" + rows->Fields("current season id").Value().ToText() +
              ";";
    }
    return text;
  }

  jet::test::TempFolder m_folder;
  std::shared_ptr<RecordingHost> m_host = std::make_shared<RecordingHost>(m_folder.Path());
  std::shared_ptr<EngineObserver> m_engine = std::make_shared<EngineObserver>();
  std::shared_ptr<DataService> m_service = std::make_shared<DataService>(m_host);
  std::string m_message;
};

}  // namespace HLDataSrvc::test
