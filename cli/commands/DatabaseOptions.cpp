#include "cli/commands/DatabaseOptions.h"

#include <algorithm>

#include "cli/commands/ExitCode.h"
#include "cli/commands/InputFile.h"
#include "cli/output/System.h"
#include "platform/Paths.h"
#include "storage/HLServiceUtils.h"

namespace cli {

using namespace HLLeague;

namespace {

/// The first line of the file, without its line end.
std::string FirstLine(const std::string& path) {
  std::string line;
  if (!ReadBytes(path, kLongestLine, line).empty())
    throw Failure(FailureKind::CannotOpen, "The password file " + path + " cannot be read.");
  line.resize(std::min(line.size(), line.find('\n')));
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

}  // namespace

void DatabaseOptions::AddTo(Command& command) {
  command.AddOption("--file", "FILE", m_file, "any Jet 4 file; without one, the league's of the chosen kind");
  m_passwordOption = command.AddOption("--password", "PASSWORD", m_password,
                                       "password of the file; other users may see it while the program runs");
  m_passwordFileOption = command.AddOption(
      "--password-file", "FILE", m_passwordFile,
      "file whose first line is the password; without either, $HALCYRA_PASSWORD, else the league's own");
}

std::string DatabaseOptions::Path(const Context& context) const {
  return m_file.empty() ? context.LeaguePath() : m_file;
}

std::string DatabaseOptions::ConnectString() const {
  std::string password;
  if (m_passwordOption.IsGiven()) {
    password = m_password;
  } else if (m_passwordFileOption.IsGiven()) {
    password = FirstLine(m_passwordFile);
  } else {
    password = EnvironmentText("HALCYRA_PASSWORD");
    if (password.empty()) return HLDataSrvc::HLServiceUtils::GetConnectString();
  }
  // A connect string is a list of items separated by semicolons, and knows no way to quote one.
  if (password.find(';') != std::string::npos) {
    throw Failure(FailureKind::WrongUsage, "A password with a semicolon cannot be given to the engine.");
  }
  return "pwd=" + password;
}

std::shared_ptr<jet::Database> DatabaseOptions::Open(const Context& context) const {
  return jet::DBEngine().OpenDatabase(Path(context), /*exclusive=*/false, /*readOnly=*/true, ConnectString());
}

}  // namespace cli
