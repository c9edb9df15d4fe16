#include "cli/output/System.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <streambuf>
#include <system_error>

#include <windows.h>
// These need what windows.h declares.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include "platform/Paths.h"
#include "platform/windows/WideText.h"

namespace cli {
namespace {

using HLDataSrvc::ToUtf8;
using HLDataSrvc::ToWide;

/// The console that a stream leads to; nullptr if it leads elsewhere. The null device is no console, though
/// _isatty takes it for a terminal.
HANDLE ConsoleOf(std::FILE* stream) {
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != 0 ? handle : nullptr;
}

/// Lines typed at the console, as UTF-8. The bytes that the C library reads there are of the console's code
/// page, which lacks most characters.
class ConsoleInput final : public std::streambuf {
 public:
  explicit ConsoleInput(HANDLE console) : m_console(console) {}

 protected:
  int_type underflow() override {
    constexpr wchar_t kEndOfInput = L'\x1A';  // Ctrl-Z, which ends the input at the start of a line only
    std::wstring line = ReadLine();
    if (line.empty() || line.front() == kEndOfInput) return traits_type::eof();
    if (line.ends_with(L"\r\n")) line.erase(line.size() - 2, 1);
    m_line = ToUtf8(line);
    setg(m_line.data(), m_line.data(), m_line.data() + m_line.size());
    return traits_type::to_int_type(m_line.front());
  }

 private:
  /// A line with its end; without one, or empty, at the end of the input.
  std::wstring ReadLine() const {
    std::wstring line;
    while (!line.ends_with(L'\n')) {
      wchar_t piece[256];
      DWORD length = 0;
      SetLastError(ERROR_SUCCESS);
      if (ReadConsoleW(m_console, piece, 256, &length, nullptr) == 0) break;
      // Ctrl-C drops what was typed of the line; the handler of the signal decides about the program.
      if (length == 0 && GetLastError() == ERROR_OPERATION_ABORTED) continue;
      if (length == 0) break;
      line.append(piece, length);
    }
    return line;
  }

  const HANDLE m_console;
  std::string m_line;
};

/// The mode that a console had before this program; put back when the program ends.
struct ConsoleMode {
  HANDLE console = nullptr;
  DWORD mode = 0;
};
ConsoleMode g_output;
ConsoleMode g_messages;

/// In reverse order: both streams may lead to one console.
void ResetConsoleModes() {
  for (const ConsoleMode* before : {&g_messages, &g_output}) {
    if (before->console != nullptr) SetConsoleMode(before->console, before->mode);
  }
}

/// Makes a console obey the escape sequences for colour and for erasing.
void ObeyEscapeSequences(std::FILE* stream, ConsoleMode& before) {
  const HANDLE console = ConsoleOf(stream);
  if (console == nullptr || GetConsoleMode(console, &before.mode) == 0) return;
  before.console = console;
  SetConsoleMode(console, before.mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

bool WriteToConsole(HANDLE console, std::wstring_view text) {
  constexpr std::size_t kMostAtOnce = 8192;  // older systems refuse more than about 64 KiB
  while (!text.empty()) {
    std::size_t length = std::min(text.size(), kMostAtOnce);
    if (length < text.size() && IS_HIGH_SURROGATE(text[length - 1])) --length;
    DWORD written = 0;
    if (WriteConsoleW(console, text.data(), static_cast<DWORD>(length), &written, nullptr) == 0 ||
        written == 0) {
      errno = EIO;
      return false;
    }
    text.remove_prefix(written);
  }
  return true;
}

}  // namespace

std::vector<std::string> CommandLineWords(int argc, char** argv) {
  // The words given to main have lost every character outside the system's code page.
  std::vector<std::string> words;
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return argc > 1 ? std::vector<std::string>(argv + 1, argv + argc) : words;
  for (int i = 1; i < count; ++i)
    words.push_back(ToUtf8(wide[i]));
  LocalFree(wide);
  return words;
}

void PrepareStandardStreams() {
  _setmode(_fileno(stdout), _O_BINARY);
  if (const HANDLE console = ConsoleOf(stdin)) {
    static ConsoleInput input(console);
    std::cin.rdbuf(&input);
  }
  ObeyEscapeSequences(stdout, g_output);
  ObeyEscapeSequences(stderr, g_messages);
  std::atexit(&ResetConsoleModes);
}

bool WriteText(std::FILE* stream, std::string_view text) {
  const HANDLE console = ConsoleOf(stream);
  if (console == nullptr) return std::fwrite(text.data(), 1, text.size(), stream) == text.size();
  return WriteToConsole(console, ToWide(text));
}

bool IsTerminal(std::FILE* stream) {
  return ConsoleOf(stream) != nullptr;
}

std::size_t TerminalWidth(std::FILE* stream) {
  CONSOLE_SCREEN_BUFFER_INFO info{};
  const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  if (GetConsoleScreenBufferInfo(console, &info) == 0) return 0;
  return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
}

std::string ProgramFolder() {
  std::wstring path(32768, L'\0');
  const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  path.resize(length);
  const std::size_t separator = path.find_last_of(L'\\');
  return separator == std::wstring::npos ? "." : ToUtf8(path.substr(0, separator));
}

std::string ReadBytes(const std::string& path, std::size_t most, std::string& bytes) {
  errno = 0;
  std::ifstream file(HLDataSrvc::ToSystemPath(path), std::ios::binary);
  bytes.resize(most);
  file.read(bytes.data(), static_cast<std::streamsize>(most));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  if (file.good() || file.eof()) return {};
  return std::generic_category().message(errno == 0 ? EIO : errno);
}

std::string EnvironmentText(const char* name) {
  std::wstring wideName;
  for (const char* c = name; *c != '\0'; ++c)
    wideName += static_cast<wchar_t>(*c);
  std::wstring value(32768, L'\0');
  value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return ToUtf8(value);
}

}  // namespace cli
