#include "cli/System.h"

#include <windows.h>
// These need what windows.h declares.
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace cli {
namespace {

std::string ToUtf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, utf8.data(), size, nullptr, nullptr);
  return utf8;
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
  SetConsoleOutputCP(CP_UTF8);
  _setmode(_fileno(stdout), _O_BINARY);
}

bool IsTerminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
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

std::string EnvironmentText(const char* name) {
  std::wstring wideName;
  for (const char* c = name; *c != '\0'; ++c)
    wideName += static_cast<wchar_t>(*c);
  std::wstring value(32768, L'\0');
  value.resize(GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
  return ToUtf8(value);
}

}  // namespace cli
