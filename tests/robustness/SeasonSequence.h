#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "HLIData/IDataService.h"
#include "tests/robustness/SeasonModel.h"
#include "tests/robustness/SeasonScript.h"
#include "tests/support/MemoryFileSystem.h"

namespace HLDataSrvc::test {

/// Random operations of a service, and writes of the members of its seasons, on a league file in memory. What
/// a client may do is done, also what leads to rows that do not fit.
class SeasonSequence {
 public:
  SeasonSequence(const std::vector<std::byte>& start, unsigned seed);
  ~SeasonSequence();
  SeasonSequence(const SeasonSequence&) = delete;
  SeasonSequence& operator=(const SeasonSequence&) = delete;

  /// Does something at random, and `checks` that the file holds the rows of the model, and that a fresh
  /// service loads all of its seasons, with a message box for the picks that do not fit.
  void Step(bool checks);
  /// The file as it is with its log, after the service has closed it.
  std::vector<std::byte> End();
  const SeasonModel& Model() const { return *m_model; }
  /// What was done, a line each, for people.
  const std::string& Log() const { return m_log; }

 private:
  using Season = std::shared_ptr<HLIData::ISeasonInfo>;

  std::int32_t Any(std::int32_t count) { return static_cast<std::int32_t>(m_random() % unsigned(count)); }
  bool OneIn(std::int32_t count) { return Any(count) == 0; }
  /// Mostly one of these, sometimes one that there is not.
  std::int32_t AnyID(const std::vector<std::int32_t>& ids);
  std::int32_t AnyID(const std::string& table) { return AnyID(m_model->IDs(table)); }

  void Play(bool isInTransaction);
  void PlaySeason(const Season& season);
  void ChangeDraft(const Season& season);
  void ChangeManagers(const Season& season);
  void ChangeNumbers(const Season& season);
  void ChangePrizes(const Season& season);
  void ChangeWinnings(const Season& season);
  void ChangeMasters();
  void DeleteMaster();
  void Look();
  void UseYear(std::int32_t year, const std::function<void()>& call);
  void Transact();
  void Reopen();
  /// Whether an operation returns true; one that raises does not.
  bool Does(const char* what, const std::function<bool()>& operation);
  void ExpectStored();
  void ExpectLoads();

  std::shared_ptr<jet::test::MemoryFileSystem> m_files = std::make_shared<jet::test::MemoryFileSystem>();
  std::shared_ptr<ScriptHost> m_host = std::make_shared<ScriptHost>("league");
  std::shared_ptr<HLIData::IDataService> m_service;
  std::unique_ptr<SeasonModel> m_model;
  std::vector<std::byte> m_bytes;  // of file and log when they were read last
  std::mt19937 m_random;
  int m_steps = 0;
  bool m_isStale = false;  // the service's records differ from the rows after a failure
  std::string m_log;
};

/// Is given the file that a sequence has left behind, and what has to be in it.
using SequenceEnd = std::function<void(const std::vector<std::byte>&, const SeasonModel&)>;

/// Plays sequences until one fails, on the small league, a new one, and each tenth on that of the fixtures.
/// Every one has its own seed, counted from that of the run, which is printed.
void PlaySequences(int sequences, int steps, bool checksSteps, const SequenceEnd& atEnd = {});

}  // namespace HLDataSrvc::test
