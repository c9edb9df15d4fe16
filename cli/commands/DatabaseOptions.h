#pragma once

#include <memory>
#include <string>

#include "cli/commands/Command.h"
#include "jet/dao/DBEngine.h"

namespace cli {

/// The options of the commands that work on any Jet 4 file: which file, and its password.
///
/// Without --file it is the league's file of the chosen kind. The password comes from --password, else from
/// --password-file, else from HALCYRA_PASSWORD; with none of them it is the league's own.
class DatabaseOptions {
 public:
  /// Adds the options to a command.
  void AddTo(Command& command);

  /// The file that the options name.
  std::string Path(const Context& context) const;

  /// Opens it for reading; others may read it meanwhile. Raises Failure for a password file that cannot be
  /// read, and what the engine's opening raises.
  std::shared_ptr<jet::Database> Open(const Context& context) const;

 protected:
  /// Whether one of the password options is given.
  bool GivesPassword() const { return m_passwordOption.IsGiven() || m_passwordFileOption.IsGiven(); }

  std::string m_file;

 private:
  std::string ConnectString() const;

  std::string m_password;
  std::string m_passwordFile;
  Option m_passwordOption;
  Option m_passwordFileOption;
};

}  // namespace cli
