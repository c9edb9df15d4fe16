#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "HLDataSrvc/CreateDataService.h"
#include "HLDataSrvc/Host.h"
#include "HLIData/IDataService.h"

namespace jet {
class Database;
}

namespace HLDataSrvc::test {

/// The name of the league file as the service asks for it on ScriptHost.
std::string ScriptFile(const std::string& folder);

/// A host to which the file is always there, and which keeps the texts of message boxes.
class ScriptHost final : public Host {
 public:
  explicit ScriptHost(std::string folder) : m_folder(std::move(folder)) {}
  std::string ApplicationFolder() const override { return m_folder; }
  std::string FindFile(const std::string& path) const override { return path; }
  void ShowMessage(const std::string& text, const std::string&) override { messages.push_back(text); }
  std::chrono::year_month_day Today() const override {
    return std::chrono::year(2024) / std::chrono::September / std::chrono::day(5);
  }
  std::vector<std::string> messages;

 private:
  std::string m_folder;
};

/// A season of the small league from its creation to its deletions, through the interface that clients have.
///
/// Each step asks for what should be there, whatever part of it is there already: a step that was broken off
/// can be done again, and leads to the same rows.
class SeasonScript {
 public:
  static constexpr int kSteps = 13;

  /// Opens the file and finds the season that is being played.
  explicit SeasonScript(std::shared_ptr<ScriptHost> host);
  /// Does a step, from 0. Raises std::runtime_error when the service does not do it, or shows a message.
  void Play(int step);
  /// The database that the service has open.
  jet::Database& Database();
  /// Closes the file, raising what goes wrong.
  void Close() { m_service->CloseDatabase(); }

 private:
  std::shared_ptr<HLIData::ISeasonInfo> Season();
  void Do(int step);
  void AddMasters();
  void SetManagers(bool areFeesPaid);
  void Pick(int round);
  void AddWinnings();
  void DeleteMasters();

  std::shared_ptr<ScriptHost> m_host;
  std::shared_ptr<HLIData::IDataService> m_service;
};

}  // namespace HLDataSrvc::test
