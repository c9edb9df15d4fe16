#include "cli/output/System.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <sys/ioctl.h>
#include <unistd.h>

namespace cli {

std::vector<std::string> CommandLineWords(int argc, char** argv) {
  return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : std::vector<std::string>();
}

void PrepareStandardStreams() {}

bool WriteText(std::FILE* stream, std::string_view text) {
  return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
}

bool IsTerminal(std::FILE* stream) {
  return isatty(fileno(stream)) != 0;
}

std::size_t TerminalWidth(std::FILE* stream) {
  winsize size{};
  return ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

std::string ProgramFolder() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? "." : program.parent_path().string();
}

std::string EnvironmentText(const char* name) {
  const char* text = std::getenv(name);
  return text == nullptr ? std::string() : std::string(text);
}

}  // namespace cli
