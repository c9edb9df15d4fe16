#pragma once

#include <stdexcept>
#include <string>

#include "jet/Error.h"

namespace cli {

/// What the program answers to the shell. The table in docs/commands.md lists the same codes.
enum class ExitCode : int {
  Done = 0,  ///< all that was asked for was done, and the whole result was written
  Refused =
      1,  ///< refused, or failed, in the league's terms: a key that exists, an unknown table, broken SQL
  WrongUsage = 2,    ///< the command line itself is wrong
  CannotOpen = 3,    ///< the file is missing, in use, or wants another password
  Damaged = 4,       ///< the file is damaged, or nothing that the engine understands
  SystemFailed = 5,  ///< the system failed: disk full, no permission, output that could not be written
};

/// The code that stands for an error of the engine.
ExitCode ExitCodeOf(jet::ErrorNumber number);

/// A failure that the program itself finds, with the code that it ends with.
class Failure : public std::runtime_error {
 public:
  /// `hint`: what to do next, shown on lines of its own; empty when there is nothing to add.
  Failure(ExitCode code, const std::string& text, std::string hint = {})
      : std::runtime_error(text), m_code(code), m_hint(std::move(hint)) {}

  ExitCode Code() const noexcept { return m_code; }
  const std::string& Hint() const noexcept { return m_hint; }

 private:
  ExitCode m_code;
  std::string m_hint;
};

}  // namespace cli
