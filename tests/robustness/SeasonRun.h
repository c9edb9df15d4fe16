#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "jet/dao/DBEngine.h"
#include "jet/file/File.h"
#include "tests/service/LeagueRows.h"

namespace HLDataSrvc::test {

/// Counts the transactions whose commit returned while all was well.
class Acknowledged final : public jet::CallObserver {
 public:
  explicit Acknowledged(std::function<bool()> isWell, std::function<void()> onCommit = {})
      : m_isWell(std::move(isWell)), m_onCommit(std::move(onCommit)) {}
  void OnCall(const char* call, const std::string& detail) override;
  std::size_t Count() const { return m_count; }

 private:
  std::function<bool()> m_isWell;
  std::function<void()> m_onCommit;
  std::size_t m_count = 0;
  bool m_isCommit = false;
};

/// The rows of a file, which must be sound; it is closed again. Raises what opening raises.
Tables SoundRows(const std::shared_ptr<jet::FileSystem>& files, const std::string& name);

/// The rows of a league file while the season's script is played.
struct SeasonStates {
  std::vector<Tables> rows;          ///< before, and after each change of a row
  std::vector<std::size_t> commits;  ///< rows that changed before the first commit (0), the second, and so on

  std::size_t Commits() const { return commits.size() - 1; }
  /// The rows after so many commits.
  const Tables& After(std::size_t commit) const { return rows[commits[commit]]; }
  const Tables& Last() const { return rows.back(); }
};
SeasonStates PlayedSeason(const std::vector<std::byte>& start);

/// Expects that rows are those after so many commits, or after one more.
void ExpectWhole(const SeasonStates& states, const Tables& rows, std::size_t commits);
/// The same, or the rows of an operation that failed in between: what it wrote before the error stays.
void ExpectUpToAnError(const SeasonStates& states, const Tables& rows, std::size_t commits);

}  // namespace HLDataSrvc::test
