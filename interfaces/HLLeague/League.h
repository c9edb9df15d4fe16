#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "HLIData/IDataService.h"

namespace HLLeague {

class LeagueHost;

/// Which league to open, and who hears of it.
struct LeagueOptions {
  /// How long to try when others have the file.
  static constexpr std::chrono::milliseconds kPatience{1000};

  std::string folder;  ///< where the league's files are
  HLIData::DBType kind = HLIData::DBType::Live;
  std::function<void(const std::string&)> note = {};  ///< takes remarks on what was loaded; empty: dropped
  std::chrono::milliseconds patience = kPatience;
};

/// A league, open through the data service for as long as this lives.
class League {
 public:
  /// Raises Failure with the service's message when the league does not open, or others have its file for
  /// longer than `patience`.
  explicit League(LeagueOptions options);
  ~League();
  League(const League&) = delete;
  League& operator=(const League&) = delete;

  /// The service; a new one after a rollback: do not keep records across a Transact that fails. Raises
  /// Failure if the database was closed and cannot be opened.
  HLIData::IDataService& Service();
  /// Passes a remark to LeagueOptions::note.
  void Note(const std::string& text) const;
  /// The file that is open.
  const std::string& Path() const { return m_path; }
  /// Raises Failure if the service has shown a message box since the last call: an operation of it has
  /// failed. To be called after every operation that shows them, so that one failure is not reported as
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
  /// Whether a Transact has stored something.
  bool HasStored() const { return m_hasStored; }
  /// Takes a new service, which loads all records again: call it after changing rows directly. Do not keep
  /// records across it.
  void Reload();
  /// How many UTF-16 units a text column takes; the largest size_t for a column that is not text.
  std::size_t TextLength(const std::string& table, const std::string& column);

 private:
  void Open(std::chrono::milliseconds patience);

  LeagueOptions m_options;
  std::shared_ptr<LeagueHost> m_host;
  std::shared_ptr<HLIData::IDataService> m_service;  ///< empty after a rollback, until it is needed again
  std::string m_path;
  bool m_isInTransaction = false;
  bool m_hasStored = false;
  std::set<std::string> m_partialDrafts;  ///< what was said of drafts whose rows do not fit
};

}  // namespace HLLeague
