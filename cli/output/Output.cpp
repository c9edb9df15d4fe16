#include "cli/output/Output.h"

#include <cerrno>
#include <system_error>

#include "cli/commands/ExitCode.h"
#include "cli/output/System.h"

namespace cli {

using namespace HLLeague;

namespace {

[[noreturn]] void RaiseWriteFailure(int error) {
  throw Failure(FailureKind::SystemFailed, "The result could not be written to standard output: " +
                                               std::generic_category().message(error) + ".");
}

}  // namespace

void Output::Write(std::string_view text) {
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
