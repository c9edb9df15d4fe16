#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include <ole2.h>
#include <windows.h>

#include "HLIDataCom.h"
#include "com/Errors.h"
#include "com/References.h"
#include "platform/windows/WideText.h"

/// Values between the two sides: numbers and codes are LONG, yes/no -1 or 0, text BSTR, records and
/// collections interface pointers.
namespace HLDataSrvc::Com {

inline std::string TextOf(BSTR text) {
  return ToUtf8(std::wstring_view(text, SysStringLen(text)));
}

/// Raises std::bad_alloc.
BSTR MakeBstr(const std::string& text);

inline void ToCom(std::int32_t value, LONG* out) {
  *out = value;
}
template <typename Code>
requires std::is_enum_v<Code>
void ToCom(Code value, LONG* out) {
  *out = static_cast<std::int32_t>(value);
}
inline void ToCom(bool value, VARIANT_BOOL* out) {
  *out = value ? VARIANT_TRUE : VARIANT_FALSE;
}
inline void ToCom(const std::string& value, BSTR* out) {
  *out = MakeBstr(value);
}
/// An empty reference becomes a null pointer.
template <typename T, typename Interface>
void ToCom(const std::shared_ptr<T>& value, Interface** out) {
  *out = Wrap(value).Detach();
}

template <typename>
inline constexpr bool kIsReference = false;
template <typename T>
inline constexpr bool kIsReference<std::shared_ptr<T>> = true;

/// What a client gave, as a `Value` of the component. Raises a type mismatch for an object that is not what
/// is wanted.
template <typename Value, typename Given>
Value FromCom(Given given) {
  if constexpr (kIsReference<Value>) {
    return Unwrap<typename Value::element_type>(given);
  } else if constexpr (std::is_same_v<Value, std::string>) {
    return TextOf(given);
  } else if constexpr (std::is_same_v<Value, bool>) {
    return given != VARIANT_FALSE;
  } else {
    return static_cast<Value>(given);
  }
}

/// One argument of a call on its way from a client to the component and, where the parameter is a reference
/// to be filled, back.
template <typename Parameter, typename Given>
class Argument {
  using Value = std::remove_cvref_t<Parameter>;
  static constexpr bool kIsFilled =
      std::is_lvalue_reference_v<Parameter> && !std::is_const_v<std::remove_reference_t<Parameter>>;

 public:
  explicit Argument(Given given) : m_given(given) {
    if constexpr (!kIsFilled) {
      m_value = FromCom<Value>(given);
    } else if constexpr (kIsReference<Value>) {
      Required(given);  // what it refers to is replaced, never read
    } else {
      m_value = m_before = FromCom<Value>(Required(given));
    }
  }

  Value& Get() { return m_value; }

  /// Hands a value that was filled in to the client; one that is as before stays the client's own.
  void CopyBack() {
    if constexpr (kIsFilled) {
      if (m_value == m_before) return;
      std::remove_pointer_t<Given> filled{};
      ToCom(m_value, &filled);
      if constexpr (kIsReference<Value>) {
        if (*m_given) (*m_given)->Release();
      } else if constexpr (std::is_same_v<Value, std::string>) {
        SysFreeString(*m_given);
      }
      *m_given = filled;
    }
  }

 private:
  Given m_given;
  Value m_value{};
  Value m_before{};
};

}  // namespace HLDataSrvc::Com
