#pragma once

#include <string>
#include <vector>

namespace jet::test {

/// What a program printed on standard output and standard error together, and how it ended.
struct ProgramResult {
  std::string output;
  int exitCode = -1;  ///< -1: it could not be run, or a signal ended it
};

/// Runs a program, found on the PATH, with arguments that no shell touches, and waits for it.
ProgramResult RunProgram(const std::vector<std::string>& command);

/// Whether this system runs the programs of the machine that the tests were built on.
bool RunsPrograms();

/// Whether this system lets a file take the place of one that is open.
bool ReplacesOpenFiles();

/// Whether a program of that name is on the PATH.
bool HasProgram(const std::string& name);

}  // namespace jet::test
