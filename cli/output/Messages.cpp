#include "cli/output/Messages.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "cli/output/System.h"
#include "league/Utf8.h"

namespace cli {

void Messages::Error(std::string_view text) {
  const std::string lead = m_colour ? "\x1b[1;31mhalcyra:\x1b[0m " : "halcyra: ";
  Line(lead + HLLeague::PrintableLines(text));
}

void Messages::Hint(std::string_view text) {
  std::size_t start = 0;
  while (start <= text.size()) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    Line("  " + HLLeague::PrintableLines(text.substr(start, end - start)));
    start = end + 1;
  }
}

void Messages::Note(std::string_view text) {
  if (!m_quiet) Line(HLLeague::PrintableLines(text));
}

void Messages::Prompt(std::string_view text) {
  Write(HLLeague::PrintableLines(text));
  static_cast<void>(std::fflush(m_stream));
}

void Messages::Transient(std::string_view text) {
  Write("\r" + HLLeague::PrintableLines(text) + "\x1b[K");
  static_cast<void>(std::fflush(m_stream));
}

void Messages::Line(std::string_view text) {
  Write(std::string(text) + "\n");
}

void Messages::Write(std::string_view text) {
  m_results.TryFlush();
  static_cast<void>(WriteText(m_stream, text));
}

}  // namespace cli
