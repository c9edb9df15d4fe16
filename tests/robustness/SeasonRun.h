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

/// Counts the changes of rows that returned while all was well.
class Acknowledged final : public jet::CallObserver {
 public:
  explicit Acknowledged(std::function<bool()> isWell, std::function<void()> onChange = {})
      : m_isWell(std::move(isWell)), m_onChange(std::move(onChange)) {}
  void OnCall(const char* call, const std::string& detail) override;
  std::size_t Count() const { return m_count; }

 private:
  std::function<bool()> m_isWell;
  std::function<void()> m_onChange;
  std::size_t m_count = 0;
  bool m_isChange = false;
};

/// The rows of a file, which must be sound; it is closed again. Raises what opening raises.
Tables SoundRows(const std::shared_ptr<jet::FileSystem>& files, const std::string& name);

/// The rows of a league file before the season's script is played and after each change that it makes.
std::vector<Tables> SeasonStates(const std::vector<std::byte>& start);

/// Expects that rows are those after so many changes, or after one more.
void ExpectAcknowledged(const std::vector<Tables>& states, const Tables& rows, std::size_t acknowledged);

}  // namespace HLDataSrvc::test
