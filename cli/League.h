#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
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

  /// `context` must outlive it. Raises Failure with the service's message when the league does not open, or
  /// others have its file for longer than `patience`.
  explicit League(const Context& context, std::chrono::milliseconds patience = kPatience);
  ~League();
  League(const League&) = delete;
  League& operator=(const League&) = delete;

  /// The service; a new one after a rollback: do not keep records across a Transact that fails. Raises
  /// Failure if the database was closed and cannot be opened.
  HLIData::IDataService& Service();
  /// Shows a note, unless notes are dropped.
  void Note(const std::string& text) const { m_context.messages.Note(text); }
  /// The file that is open.
  const std::string& Path() const { return m_path; }
  /// Raises Failure if the service has shown a message box since the last call: an operation of it has
  /// failed. To be called after every operation that shows them, so that one failure is not told as
  /// another's. A box about a draft with rows that do not fit is a note, given once.
  void RaiseShownMessages();
  /// The same, without raising: the text of the boxes, a line each; empty when there were none.
  std::string TakeShownMessages();
  /// Whether a draft was loaded whose rows do not all fit, so that seasons do not show all that is stored.
  bool HasPartialDrafts() const { return !m_partialDrafts.empty(); }
  /// Runs `work` as one transaction, or as part of the one that is open: everything that it saves is stored,
  /// or nothing. When it raises, the file is as it was before, and all records are reloaded.
  ///
  /// Raises Failure, whose text begins with the sentence `failure` ("The prizes could not be saved."), for an
  /// exception or a message box of `work`, and if what it saved cannot be stored.
  void Transact(const std::string& failure, const std::function<void()>& work);
  /// Takes a new service, which loads all records anew: after rows were changed behind its back. Do not keep
  /// records across it.
  void Reload();
  /// How many UTF-16 units a text column takes; the largest size_t for a column that is not text.
  std::size_t TextLength(const std::string& table, const std::string& column);

  /// The draft of the current season, with the picks that are not saved yet.
  DraftSession& Draft() { return *m_draft; }
  /// Raises Failure when there are picks that `draft save` has not stored yet. For commands, named by
  /// `command` ("season use"), after which the draft is loaded again and such picks would be lost; to be
  /// called before anything is changed.
  void RefuseUnsavedPicks(const std::string& command);

 private:
  void Open(std::chrono::milliseconds patience);
  [[noreturn]] void RaiseNotOpened(const jet::Error& error) const;

  const Context& m_context;
  std::shared_ptr<LeagueHost> m_host;
  std::shared_ptr<HLIData::IDataService> m_service;  ///< empty after a rollback, until it is needed again
  std::string m_path;
  std::unique_ptr<DraftSession> m_draft;
  bool m_isInTransaction = false;
  std::set<std::string> m_partialDrafts;  ///< what was said of drafts whose rows do not fit
};

}  // namespace cli
