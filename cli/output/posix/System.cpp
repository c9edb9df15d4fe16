#include "cli/output/System.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "platform/Paths.h"

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

std::string ReadBytes(const std::string& path, std::size_t most, std::string& bytes) {
  constexpr int kPatience = 10000;  // milliseconds
  const auto reason = [] { return std::generic_category().message(errno); };
  // Without O_NONBLOCK opening a pipe would block until it has a writer.
  const int file = ::open(HLDataSrvc::ToSystemPath(path).c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return reason();
  const std::unique_ptr<const int, void (*)(const int*)> closing(&file,
                                                                 [](const int* open) { ::close(*open); });
  std::array<char, 1 << 16> buffer{};
  for (bytes.clear(); bytes.size() < most;) {
    pollfd wanted{file, POLLIN, 0};
    const int ready = ::poll(&wanted, 1, kPatience);
    if (ready == 0) return "nothing was written into it";
    const ssize_t count = ::read(file, buffer.data(), std::min(buffer.size(), most - bytes.size()));
    if (count == 0) return {};
    if (count > 0) {
      bytes.append(buffer.data(), static_cast<std::size_t>(count));
    } else if (errno != EINTR && errno != EAGAIN) {
      return reason();
    }
  }
  return {};
}

std::string EnvironmentText(const char* name) {
  const char* text = std::getenv(name);
  return text == nullptr ? std::string() : std::string(text);
}

}  // namespace cli
