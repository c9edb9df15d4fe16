#include "com/Dispatch.h"

#include <string>

#include <ole2.h>

#include "com/ComPtr.h"
#include "com/DispatchArguments.h"
#include "com/Errors.h"
#include "com/Module.h"
#include "platform/windows/WideText.h"

namespace HLDataSrvc::Com::Dispatch {
namespace {

/// A member's description, given back to its type at the end.
class Member {
 public:
  /// Finds the member that a call with these flags means. False when the type has none of that number.
  bool Find(const ComPtr<ITypeInfo>& type, DISPID number, WORD flags) {
    TYPEATTR* attributes = nullptr;
    if (FAILED(type->GetTypeAttr(&attributes))) return false;
    const UINT count = attributes->cFuncs;
    type->ReleaseTypeAttr(attributes);
    bool isKnown = false;
    for (UINT i = 0; i < count; ++i) {
      FUNCDESC* description = nullptr;
      if (FAILED(type->GetFuncDesc(i, &description))) continue;
      if (description->memid == number) {
        isKnown = true;
        if (description->invkind & flags) {
          m_type = type;
          m_description = description;
          return true;
        }
      }
      type->ReleaseFuncDesc(description);
    }
    return isKnown;
  }
  Member() = default;
  ~Member() {
    if (m_description) m_type->ReleaseFuncDesc(m_description);
  }
  Member(const Member&) = delete;
  Member& operator=(const Member&) = delete;

  const FUNCDESC* Description() const { return m_description; }

 private:
  ComPtr<ITypeInfo> m_type;
  FUNCDESC* m_description = nullptr;
};

std::string NameOf(ITypeInfo& type, DISPID number) {
  BSTR name = nullptr;
  if (FAILED(type.GetDocumentation(number, &name, nullptr, nullptr, nullptr))) return "the member";
  const std::string text = ToUtf8({name, SysStringLen(name)});
  SysFreeString(name);
  return text;
}

/// What to say about a call that never reached its member.
const char* Refusal(HRESULT result) {
  switch (result) {
    case DISP_E_BADPARAMCOUNT:
      return " takes another number of arguments.";
    case DISP_E_PARAMNOTOPTIONAL:
    case DISP_E_PARAMNOTFOUND:
      return " lacks an argument that it needs.";
    case DISP_E_OVERFLOW:
      return " takes numbers of 32 bits.";
    case DISP_E_MEMBERNOTFOUND:
      return " cannot be used in this way.";
    default:
      return " takes arguments of other types.";
  }
}

}  // namespace

HRESULT TypeInfo(std::span<const Face> faces, UINT index, ITypeInfo** info) noexcept {
  if (!info) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  try {
    *info = Module::TypeInfo(*faces.front().id).Detach();
    return S_OK;
  } catch (...) {
    return ReportCurrentException();
  }
}

HRESULT NumbersOfNames(std::span<const Face> faces, LPOLESTR* names, UINT count, DISPID* numbers) noexcept {
  if (!names || !numbers) return E_POINTER;
  try {
    for (const Face& face : faces) {
      const HRESULT result = Module::TypeInfo(*face.id)->GetIDsOfNames(names, count, numbers);
      // Known by its first name: then the others are names of its parameters, or wrong.
      if (SUCCEEDED(result) || (count > 0 && numbers[0] != DISPID_UNKNOWN)) return result;
    }
    return DISP_E_UNKNOWNNAME;
  } catch (...) {
    return ReportCurrentException();
  }
}

HRESULT Invoke(std::span<const Face> faces, DISPID number, WORD flags, DISPPARAMS* parameters,
               VARIANT* result, EXCEPINFO* exception, UINT* badArgument) noexcept {
  if (!parameters) return E_INVALIDARG;
  try {
    for (const Face& face : faces) {
      const ComPtr<ITypeInfo> type = Module::TypeInfo(*face.id);
      Member member;
      if (!member.Find(type, number, flags)) continue;

      UINT bad = 0;
      HRESULT outcome = DISP_E_MEMBERNOTFOUND;
      if (member.Description()) {
        try {
          DispatchArguments arguments(*parameters, *member.Description(), bad);
          outcome =
              type->Invoke(face.pointer, number, flags, arguments.Parameters(), result, exception, &bad);
          if (SUCCEEDED(outcome)) arguments.CopyBack();
        } catch (const ComError& error) {
          outcome = error.Result();
        }
      }
      if (FAILED(outcome) && outcome != DISP_E_EXCEPTION) {
        if (badArgument) *badArgument = bad;
        Report(outcome, NameOf(*type.Get(), number) + Refusal(outcome));
      }
      return outcome;
    }
    return Report(DISP_E_MEMBERNOTFOUND,
                  "The object has no member of the number " + std::to_string(number) + ".");
  } catch (...) {
    return ReportCurrentException();
  }
}

}  // namespace HLDataSrvc::Com::Dispatch
