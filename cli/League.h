#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HLDataSrvc/Host.h"
#include "HLIData/IDataService.h"
#include "cli/Context.h"
#include "jet/Error.h"

namespace cli {

class DraftSession;

/// The host of a service that the command line runs: its folder is the one that --folder names, and what it
/// would show in a message box is kept, for the command to fail with.
class LeagueHost : public HLDataSrvc::Host {
 public:
  explicit LeagueHost(std::string folder) : m_folder(std::move(folder)), m_system(HLDataSrvc::SystemHost()) {}

  std::string ApplicationFolder() const override { return m_folder; }
  std::string FindFile(const std::string& path) const override { return m_system->FindFile(path); }
  void ShowMessage(const std::string& text, const std::string& title) override;
  std::chrono::year_month_day Today() const override { return m_system->Today(); }

  /// The texts of the message boxes since they were last taken, oldest first, each on one line.
  std::vector<std::string> TakeShown() { return std::exchange(m_shown, {}); }

 private:
  std::string m_folder;
  std::shared_ptr<HLDataSrvc::Host> m_system;
  std::vector<std::string> m_shown;
};

/// The league of the chosen folder and kind, open through the data service for as long as this lives.
class League {
 public:
  /// How long to try when others have the file.
  static constexpr std::chrono::milliseconds kPatience{1000};

  /// Raises Failure with the service's message when the league does not open, or others have its file for
  /// longer than `patience`.
  explicit League(const Context& context, std::chrono::milliseconds patience = kPatience);
  ~League();
  League(const League&) = delete;
  League& operator=(const League&) = delete;

  HLIData::IDataService& Service() { return *m_service; }
  /// The file that is open.
  const std::string& Path() const { return m_path; }
  /// Raises Failure if the service has shown a message box since the last call: an operation of it has
  /// failed. To be called after every operation that shows them, so that one failure is not told as
  /// another's.
  void RaiseShownMessages();
  /// Forgets all records that the service has read, so that whatever follows goes on from what is stored: for
  /// after an operation that failed half way. Raises Failure when the file cannot be read any more.
  void ForgetRecords() { Reopen(/*forget=*/true); }
  /// How many UTF-16 units a column of text takes, of any length if it is none. The service lets go of the
  /// file to ask for it the first time. Raises what opening the file raises.
  std::size_t TextLength(const std::string& table, const std::string& column);

  /// The draft of the current season, with the picks that are not saved yet.
  DraftSession& Draft() { return *m_draft; }
  /// Raises Failure when there are picks that `draft save` has not stored yet. For commands, named by
  /// `command` ("season use"), after which the draft is loaded again and such picks would be lost; to be
  /// called before anything is changed.
  void RefuseUnsavedPicks(const std::string& command);

 private:
  void Reopen(bool forget);
  [[noreturn]] void RaiseNotOpened(const Context& context, const jet::Error& error) const;

  std::shared_ptr<LeagueHost> m_host;
  std::shared_ptr<HLIData::IDataService> m_service;
  std::string m_path;
  std::unique_ptr<DraftSession> m_draft;
  std::map<std::pair<std::string, std::string>, std::size_t> m_textLengths;  ///< under table and column
};

}  // namespace cli
