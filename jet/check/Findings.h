#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "jet/Check.h"
#include "jet/Error.h"

namespace jet::check {

/// Collects what is wrong with a file, a sentence each. Damage at one place can show at thousands of others,
/// so that only the first findings are kept and the rest counted.
class Findings {
 public:
  static constexpr std::size_t kMost = 200;

  explicit Findings(CheckReport& report) : m_report(&report) {}

  void Add(std::string_view where, std::string_view what) {
    if (m_count++ < kMost) {
      m_report->findings.push_back(std::string(where) + ": " + std::string(what));
    }
  }

  /// Runs `examine`; damage that stops it becomes a finding. False then. Failures of the system are passed
  /// on.
  template <typename Examine>
  bool Guard(std::string_view where, Examine examine) {
    try {
      examine();
      return true;
    } catch (const Error& error) {
      if (error.Number() == ErrorNumber::ReadFailed || error.Number() == ErrorNumber::PermissionDenied) throw;
      Add(where, error.what());
      return false;
    }
  }

  /// Adds how many findings were left out.
  void Finish() {
    if (m_count > kMost) {
      m_report->findings.push_back("and " + std::to_string(m_count - kMost) +
                                   " more findings of these kinds");
    }
  }

 private:
  CheckReport* m_report;
  std::size_t m_count = 0;
};

/// "page 17 row 3", for messages.
inline std::string PlaceOf(std::size_t page, std::size_t slot) {
  return "page " + std::to_string(page) + " row " + std::to_string(slot);
}

}  // namespace jet::check
