#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "cli/output/Messages.h"

namespace cli {

/// Shows on a terminal how far a long piece of work has come, and is gone when the work is. Where messages
/// lead elsewhere, or are not wanted, it shows nothing. Borrows the messages.
class ProgressBar {
 public:
  /// `what` is under way: "Importing". `total` steps are to be taken.
  ProgressBar(Messages& messages, std::string what, std::size_t total);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  /// One step more is done.
  void Advance();

 private:
  void Draw();

  Messages& m_messages;
  std::string m_what;
  std::size_t m_total;
  std::size_t m_done = 0;
  bool m_isShown;
  std::chrono::steady_clock::time_point m_drawn;
};

/// "Importing [#####.....]  50 of 100", in at most `width` columns, of which it leaves the bar out when there
/// are few.
std::string ProgressText(const std::string& what, std::size_t done, std::size_t total, std::size_t width);

}  // namespace cli
