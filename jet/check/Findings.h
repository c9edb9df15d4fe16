#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>

#include "jet/Check.h"
#include "jet/Error.h"

namespace jet::check {

/// Collects what is wrong with a file, a sentence each. Damage at one place can show at thousands of others,
/// so that of each structure, and of all, only the first findings are kept and the rest counted.
class Findings {
 public:
  static constexpr std::size_t kMost = 500;
  static constexpr std::size_t kMostOfOne = 40;

  explicit Findings(CheckReport& report) : m_report(&report) {}

  /// `where` names the structure.
  void Add(std::string_view where, std::string_view what) {
    const std::size_t ofThis = ++m_perStructure[std::string(where)];
    if (ofThis > kMostOfOne || m_report->findings.size() >= kMost) {
      ++m_leftOut;
    } else {
      m_report->findings.push_back(std::string(where) + ": " + std::string(what));
    }
  }

  /// Runs `examine`; damage that stops it becomes a finding, and the answer is false. `about` makes words to
  /// put before what is wrong. Failures of the system are passed on.
  template <typename Examine, typename About>
  bool Guard(std::string_view where, Examine examine, About about) {
    try {
      examine();
      return true;
    } catch (const Error& error) {
      if (error.Number() == ErrorNumber::ReadFailed || error.Number() == ErrorNumber::PermissionDenied) throw;
      Add(where, about() + error.what());
      return false;
    }
  }
  template <typename Examine>
  bool Guard(std::string_view where, Examine examine) {
    return Guard(where, examine, [] { return std::string(); });
  }

  /// Adds how many findings were left out.
  void Finish() {
    if (m_leftOut > 0) {
      m_report->findings.push_back("and " + std::to_string(m_leftOut) +
                                   " more findings about these structures");
    }
  }

 private:
  CheckReport* m_report;
  std::unordered_map<std::string, std::size_t> m_perStructure;
  std::size_t m_leftOut = 0;
};

/// "page 17 row 3", for messages.
inline std::string PlaceOf(std::size_t page, std::size_t slot) {
  return "page " + std::to_string(page) + " row " + std::to_string(slot);
}

}  // namespace jet::check
