#include "cli/output/ProgressBar.h"

#include <algorithm>
#include <utility>

#include "cli/output/System.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::size_t kWidest = 40;  ///< of the bar itself
constexpr std::size_t kNarrowestBar = 5;
constexpr std::chrono::milliseconds kBetween(100);

}  // namespace

ProgressBar::ProgressBar(Messages& messages, std::string what, std::size_t total)
    : m_messages(messages),
      m_what(std::move(what)),
      m_total(total),
      m_isShown(!messages.IsQuiet() && IsTerminal(stderr)) {
  if (m_isShown) Draw();
}

ProgressBar::~ProgressBar() {
  if (m_isShown) m_messages.Transient("");
}

void ProgressBar::Advance() {
  ++m_done;
  if (m_isShown && std::chrono::steady_clock::now() - m_drawn >= kBetween) Draw();
}

void ProgressBar::Draw() {
  const std::size_t width = TerminalWidth(stderr);
  m_messages.Transient(ProgressText(m_what, m_done, m_total, width == 0 ? kUsualWidth : width));
  m_drawn = std::chrono::steady_clock::now();
}

std::string ProgressText(const std::string& what, std::size_t done, std::size_t total, std::size_t width) {
  const std::string count = std::to_string(done) + " of " + std::to_string(total);
  const std::size_t taken = DisplayWidth(what) + count.size() + 5;  // blanks, brackets, the last column
  const std::size_t bar = std::min(kWidest, width > taken ? width - taken : 0);
  if (bar < kNarrowestBar || total == 0) return CutToWidth(what + " " + count, width > 0 ? width - 1 : 0);
  const std::size_t filled = std::min(done, total) * bar / total;
  return what + " [" + std::string(filled, '#') + std::string(bar - filled, '.') + "] " + count;
}

}  // namespace cli
