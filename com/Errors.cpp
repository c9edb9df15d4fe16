#include "com/Errors.h"

#include <new>

#include <ole2.h>

#include "HLIData/Error.h"
#include "com/ComPtr.h"
#include "jet/Error.h"
#include "platform/windows/WideText.h"

namespace HLDataSrvc::Com {

ComError TypeMismatch(const std::string& description) {
  return {ResultOf(static_cast<int>(HLIData::ErrorNumber::TypeMismatch)), description};
}

HRESULT Report(HRESULT result, const std::string& description) noexcept {
  try {
    ComPtr<ICreateErrorInfo> creation;
    if (FAILED(CreateErrorInfo(creation.Put()))) return result;
    std::wstring text = ToWide(description);
    std::wstring source = L"HLDataSrvc";
    creation->SetDescription(text.data());
    creation->SetSource(source.data());
    if (const auto info = creation.As<IErrorInfo>()) SetErrorInfo(0, info.Get());
  } catch (const std::bad_alloc&) {
    SetErrorInfo(0, nullptr);  // the result alone has to do
  }
  return result;
}

HRESULT ReportCurrentException() noexcept {
  try {
    throw;
  } catch (const ComError& error) {
    return Report(error.Result(), error.what());
  } catch (const HLIData::Error& error) {
    return Report(ResultOf(static_cast<int>(error.Number())), error.what());
  } catch (const jet::Error& error) {
    return Report(ResultOf(static_cast<int>(error.Number())), error.what());
  } catch (const std::bad_alloc&) {
    return Report(E_OUTOFMEMORY, "There is not enough memory.");
  } catch (const std::exception& error) {
    return Report(E_FAIL, error.what());
  } catch (...) {
    return Report(E_UNEXPECTED, "An error of an unknown kind.");
  }
}

}  // namespace HLDataSrvc::Com
