#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <ocidl.h>
#include <ole2.h>
#include <windows.h>

#include "HLIDataCom.h"
#include "com/ComPtr.h"

namespace HLDataSrvc::Com::test {

/// A text that is handed to the library or comes from it.
class Text {
 public:
  Text() = default;
  explicit Text(const wchar_t* text) : m_text(SysAllocString(text)) {}
  ~Text() { SysFreeString(m_text); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;

  operator BSTR() const { return m_text; }
  BSTR* Put() { return &m_text; }
  std::wstring Value() const { return {m_text ? m_text : L"", SysStringLen(m_text)}; }

 private:
  BSTR m_text = nullptr;
};

inline VARIANT Position(LONG position) {
  VARIANT value;
  V_VT(&value) = VT_I4;
  V_I4(&value) = position;
  return value;
}

inline VARIANT Key(const Text& key) {
  VARIANT value;
  V_VT(&value) = VT_BSTR;
  V_BSTR(&value) = key;
  return value;
}

inline VARIANT Missing() {
  VARIANT value;
  V_VT(&value) = VT_ERROR;
  V_ERROR(&value) = DISP_E_PARAMNOTFOUND;
  return value;
}

/// Whether two references are to the same object, as the system settles it.
template <typename First, typename Second>
bool AreSame(const ComPtr<First>& first, const ComPtr<Second>& second) {
  return first.template As<IUnknown>().Get() == second.template As<IUnknown>().Get();
}

/// For messages of tests.
inline std::string ToNarrow(const std::wstring& text) {
  std::string narrow;
  for (const wchar_t c : text)
    narrow += c < 0x80 ? static_cast<char>(c) : '?';
  return narrow;
}

/// The description left by the last failing call, taken from the thread.
inline std::wstring LastDescription() {
  ComPtr<IErrorInfo> info;
  Text description;
  if (GetErrorInfo(0, info.Put()) != S_OK) return L"(none)";
  info->GetDescription(description.Put());
  return description.Value();
}

/// The result that carries a number of the component.
constexpr HRESULT Numbered(int number) {
  return static_cast<HRESULT>(0x800A0000u | static_cast<unsigned>(number));
}

/// In a separate apartment; at the end of every test the library has no object left.
class ComTest : public testing::Test {
 protected:
  ComTest() { EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
  ~ComTest() override {
    const HMODULE library = GetModuleHandleW(L"HLDataSrvc.dll");
    if (library) {
      using CanUnload = HRESULT(STDAPICALLTYPE*)();
      const auto canUnload =
          reinterpret_cast<CanUnload>(reinterpret_cast<void*>(GetProcAddress(library, "DllCanUnloadNow")));
      EXPECT_EQ(canUnload(), S_OK) << "objects are left";
    }
    CoUninitialize();
  }

  /// A new object of one of the library's classes, by the name under which programs create it.
  template <typename Interface>
  static ComPtr<Interface> Create(const wchar_t* name) {
    CLSID id{};
    ComPtr<Interface> object;
    EXPECT_EQ(CLSIDFromProgID((L"HLDataSrvc." + std::wstring(name)).c_str(), &id), S_OK);
    EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface), object.PutVoid()),
              S_OK);
    return object;
  }

  /// A service with one of the league's files open, by default the test league.
  static ComPtr<::IDataService> OpenService(LONG file = DBTypeTest) {
    auto service = Create<::IDataService>(L"DataService");
    Text message;
    VARIANT_BOOL isDone = VARIANT_FALSE;
    EXPECT_EQ(service->Initialize(file, message.Put(), &isDone), S_OK);
    EXPECT_EQ(isDone, VARIANT_TRUE) << ToNarrow(message.Value());
    return service;
  }

  /// A season that is not of the test league yet, with two managers and one round.
  static ComPtr<::ISeasonInfo> SeasonOf(const ComPtr<::IDataService>& service, LONG year) {
    ComPtr<::ISeasonInfo> season;
    VARIANT_BOOL isDone = VARIANT_FALSE;
    EXPECT_EQ(service->put_CurrentSeasonYear(year), S_OK);
    EXPECT_EQ(service->GetCurrentSeasonInfo(season.Put()), S_OK);
    season->put_NoOfManagers(2);
    season->put_NoOfRounds(1);
    EXPECT_EQ(service->SaveCurrentSeasonInfo(&isDone), S_OK);
    EXPECT_EQ(isDone, VARIANT_TRUE);
    season = {};
    EXPECT_EQ(service->GetCurrentSeasonInfo(season.Put()), S_OK);
    const auto managers = Found(service, SearchTypeManagers);
    for (LONG i = 1; i <= 2; ++i) {
      const auto manager = Item<::IManagerTmplInfo>(managers, Position(i));
      EXPECT_EQ(season->AddManager(manager.Get(), &isDone), S_OK);
    }
    return season;
  }

  /// All of a kind that can be picked.
  static ComPtr<::IKeyedCollection> Found(const ComPtr<::IDataService>& service, LONG type) {
    ComPtr<::IKeyedCollection> found;
    EXPECT_EQ(service->Search(type, Text(L""), VARIANT_FALSE, VARIANT_FALSE, found.Put()), S_OK);
    return found;
  }

  template <typename Interface>
  static ComPtr<Interface> Item(const ComPtr<::IKeyedCollection>& collection, VARIANT which) {
    ComPtr<IDispatch> item;
    EXPECT_EQ(collection->get_Item(which, item.Put()), S_OK);
    return item.As<Interface>();
  }

  static LONG CountOf(const ComPtr<::IKeyedCollection>& collection) {
    LONG count = -1;
    EXPECT_EQ(collection->get_Count(&count), S_OK);
    return count;
  }

  static ComPtr<::IKeyedCollection> ManagersOf(const ComPtr<::ISeasonInfo>& season) {
    ComPtr<::IKeyedCollection> managers;
    EXPECT_EQ(season->get_Managers(managers.Put()), S_OK);
    return managers;
  }
};

}  // namespace HLDataSrvc::Com::test
