#pragma once

#include <stdexcept>
#include <string>

#include <windows.h>

namespace HLDataSrvc::Com {

/// An error of the adapters themselves, with the result that callers are to see.
class ComError : public std::runtime_error {
 public:
  ComError(HRESULT result, const std::string& description)
      : std::runtime_error(description), m_result(result) {}

  HRESULT Result() const noexcept { return m_result; }

 private:
  HRESULT m_result;
};

/// The result that carries an error number of the component, as scripts and Basic know them: `Err.Number` is
/// the number itself.
constexpr HRESULT ResultOf(int number) {
  return static_cast<HRESULT>(0x800A0000u | (static_cast<unsigned>(number) & 0xFFFFu));
}

/// What the caller gave cannot be used as what is wanted: number 13.
ComError TypeMismatch(const std::string& description);

/// Leaves a description for the caller, who finds it in the error object of its thread, and returns `result`.
HRESULT Report(HRESULT result, const std::string& description) noexcept;

/// Reports the exception that is being handled. No exception crosses the edge of the library.
HRESULT ReportCurrentException() noexcept;

/// What an argument points at; raises when it points nowhere.
template <typename T>
T& Required(T* pointer) {
  if (!pointer) throw ComError(E_POINTER, "There is no place to put a result: a pointer is null.");
  return *pointer;
}

}  // namespace HLDataSrvc::Com
