#include <cstddef>
#include <ctime>
#include <memory>
#include <string>
#include <system_error>

#include <windows.h>

#include "HLDataSrvc/Host.h"
#include "HLIData/Error.h"
#include "platform/windows/ComponentFile.h"
#include "platform/windows/WideText.h"

namespace HLDataSrvc {
namespace {

bool IsAbsence(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_NO_MORE_FILES ||
         error == ERROR_INVALID_NAME || error == ERROR_DIRECTORY;
}

class WindowsHost final : public Host {
 public:
  std::string ApplicationFolder() const override {
    std::wstring file = ComponentFile();
    file.resize(file.find_last_of(L'\\') == file.npos ? 0 : file.find_last_of(L'\\'));
    return ToUtf8(file);
  }

  std::string FindFile(const std::string& path) const override {
    WIN32_FIND_DATAW entry{};
    const HANDLE search = FindFirstFileW(ToWide(path).c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
      const DWORD error = GetLastError();
      if (IsAbsence(error)) return {};
      throw HLIData::Error(
          HLIData::ErrorNumber::PathAccess,
          path + " cannot be looked up: " + std::system_category().message(static_cast<int>(error)) + ".");
    }
    const std::unique_ptr<void, BOOL(WINAPI*)(HANDLE)> closer(search, &FindClose);
    constexpr DWORD kNotOrdinary = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    do {
      if ((entry.dwFileAttributes & kNotOrdinary) == 0) return ToUtf8(entry.cFileName);
    } while (FindNextFileW(search, &entry));
    return {};
  }

  void ShowMessage(const std::string& text, const std::string& title) override {
    MessageBoxW(nullptr, ToWide(text).c_str(), ToWide(title).c_str(), MB_OK | MB_TASKMODAL);
  }

  std::chrono::year_month_day Today() const override {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return std::chrono::year(now.wYear) / std::chrono::month(now.wMonth) / std::chrono::day(now.wDay);
  }
};

}  // namespace

std::shared_ptr<Host> SystemHost() {
  return std::make_shared<WindowsHost>();
}

}  // namespace HLDataSrvc
