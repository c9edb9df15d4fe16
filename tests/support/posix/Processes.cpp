#include "tests/support/Processes.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <sstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace jet::test {

ProgramResult RunProgram(const std::vector<std::string>& command) {
  std::vector<std::string> words = command;
  std::vector<char*> arguments;
  for (auto& word : words)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);

  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  const pid_t child = ::fork();
  if (child == 0) {
    ::dup2(ends[1], STDOUT_FILENO);
    ::dup2(ends[1], STDERR_FILENO);
    ::execvp(arguments[0], arguments.data());
    ::_exit(127);
  }
  ::close(ends[1]);
  ProgramResult result;
  std::array<char, 65536> piece{};
  for (;;) {
    const ssize_t count = ::read(ends[0], piece.data(), piece.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    result.output.append(piece.data(), static_cast<std::size_t>(count));
  }
  ::close(ends[0]);
  int status = 0;
  if (child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status))
    result.exitCode = WEXITSTATUS(status);
  return result;
}

bool RunsPrograms() {
  return true;
}

bool ReplacesOpenFiles() {
  return true;
}

bool HasProgram(const std::string& name) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path == nullptr ? "" : path);
  for (std::string folder; std::getline(folders, folder, ':');) {
    if (::access((folder + "/" + name).c_str(), X_OK) == 0) return true;
  }
  return false;
}

}  // namespace jet::test
