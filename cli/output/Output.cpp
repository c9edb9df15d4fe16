#include "cli/output/Output.h"

#include <cerrno>
#include <system_error>

#include "HLLeague/Failure.h"
#include "cli/output/System.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

[[noreturn]] void RaiseWriteFailure(int error) {
  throw Failure(FailureKind::SystemFailed, "The result could not be written to standard output: " +
                                               std::generic_category().message(error) + ".");
}

}  // namespace

Output::Output(std::FILE* stream) : m_stream(stream), m_isTerminal(IsTerminal(stream)) {}

void Output::Write(std::string_view text) {
  if (m_isTerminal) {
    WriteBytes(PrintableLines(text));
  } else {
    WriteBytes(text);
  }
}

void Output::Clear() {
  if (m_isTerminal) WriteBytes("\x1b[H\x1b[2J\x1b[3J");
}

void Output::WriteBytes(std::string_view text) {
  errno = 0;
  if (!WriteText(m_stream, text)) {
    if (m_error == 0) m_error = errno;
    RaiseWriteFailure(m_error);
  }
}

void Output::Line(std::string_view text) {
  Write(text);
  Write("\n");
}

void Output::Lines(const std::vector<std::string>& texts) {
  for (const std::string& text : texts)
    Line(text);
}

void Output::Flush() {
  TryFlush();
  if (std::ferror(m_stream) != 0) RaiseWriteFailure(m_error);
}

void Output::TryFlush() {
  errno = 0;
  if (std::fflush(m_stream) != 0 && m_error == 0) m_error = errno;
}

}  // namespace cli
