#include "platform/windows/ComponentFile.h"

#include <windows.h>

namespace HLDataSrvc {

std::wstring ComponentFile() {
  HMODULE component = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&ComponentFile), &component);
  std::wstring file(MAX_PATH, L'\0');
  // A name that does not fit is cut off to the whole length of the buffer.
  DWORD length = GetModuleFileNameW(component, file.data(), static_cast<DWORD>(file.size()));
  while (length == file.size()) {
    file.resize(file.size() * 2);
    length = GetModuleFileNameW(component, file.data(), static_cast<DWORD>(file.size()));
  }
  file.resize(length);
  return file;
}

}  // namespace HLDataSrvc
