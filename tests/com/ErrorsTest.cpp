// What goes wrong at the edge: by slot, by name, from another apartment, and shown to the user.

#include <string>
#include <thread>
#include <vector>

#include "tests/com/ComTest.h"

namespace HLDataSrvc::Com::test {
namespace {

class Errors : public ComTest {
 protected:
  /// Calls a member by name.
  static HRESULT Call(const ComPtr<IDispatch>& object, const wchar_t* name, WORD how,
                      std::vector<VARIANT> arguments, VARIANT* result = nullptr) {
    std::wstring text = name;
    LPOLESTR names[] = {text.data()};
    DISPID number = DISPID_UNKNOWN;
    if (FAILED(object->GetIDsOfNames(IID_NULL, names, 1, 0, &number))) return DISP_E_UNKNOWNNAME;
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = how != DISPATCH_METHOD && how != DISPATCH_PROPERTYGET;
    DISPPARAMS parameters{arguments.data(), isPut ? &put : nullptr, static_cast<UINT>(arguments.size()),
                          isPut ? 1U : 0U};
    return object->Invoke(number, IID_NULL, 0, how, &parameters, result, nullptr, nullptr);
  }

  static VARIANT Object(IDispatch* object) {
    VARIANT value;
    V_VT(&value) = VT_DISPATCH;
    V_DISPATCH(&value) = object;
    return value;
  }
};

TEST_F(Errors, OfTheComponentKeepNumberAndDescription) {
  const auto service = OpenService();
  const auto season = SeasonOf(service, 2051);
  const auto manager = Item<::IManagerInfo>(ManagersOf(season), Position(1));
  EXPECT_EQ(season->RemoveDraft(99), Numbered(9));
  EXPECT_EQ(LastDescription(), L"Position 99 lies outside the collection, which holds 2 items.");
  EXPECT_EQ(season->UpdateDraft(nullptr, 1, manager.Get()), Numbered(91));
  EXPECT_EQ(LastDescription(), L"There is nothing to pick.");
  LONG id = 0;
  EXPECT_EQ(Create<::IManagerInfo>(L"ManagerInfo")->get_ID(&id), Numbered(91));
  EXPECT_NE(LastDescription(), L"(none)");

  const auto foreign = Create<::IManagerTmplInfo>(L"ManagerTmplInfo").As<IUnknown>();
  auto* const pretended = reinterpret_cast<::IManagerInfo*>(foreign.Get());
  VARIANT_BOOL isDone = VARIANT_TRUE;
  EXPECT_EQ(season->RemoveManager(pretended, &isDone), Numbered(13)) << "one of ours, but another kind";
  EXPECT_EQ(isDone, VARIANT_FALSE);
  EXPECT_NE(LastDescription().find(L"a manager of a season"), std::wstring::npos);
  EXPECT_EQ(season->RemoveManager(nullptr, &isDone), S_OK);
  EXPECT_EQ(isDone, VARIANT_FALSE) << "the season's own answer for an empty reference";
  EXPECT_EQ(season->get_Year(nullptr), E_POINTER);
  EXPECT_EQ(season->IsPickableTaken(nullptr, nullptr, &isDone), E_POINTER);
  EXPECT_EQ(season.As<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(__uuidof(::ISeasonInfo)), S_OK);
}

TEST_F(Errors, OfCallsByNameAreToldBeforeTheCall) {
  const auto season = Create<IDispatch>(L"SeasonInfo");
  const auto other = Create<IDispatch>(L"PlayerInfo");
  const Text many(L"many");
  VARIANT big;
  V_VT(&big) = VT_R8;
  V_R8(&big) = 1e12;
  SHORT small = 0;
  VARIANT smallVariable;
  V_VT(&smallVariable) = VT_BYREF | VT_I2;
  V_I2REF(&smallVariable) = &small;
  const struct {
    const wchar_t* member;
    WORD how;
    std::vector<VARIANT> arguments;
    HRESULT expected;
  } kCalls[] = {
      {L"NoOfRounds", DISPATCH_PROPERTYPUT, {Key(many)}, DISP_E_TYPEMISMATCH},
      {L"NoOfRounds", DISPATCH_PROPERTYPUT, {big}, DISP_E_OVERFLOW},
      {L"IsPickableTaken", DISPATCH_METHOD, {smallVariable, Object(nullptr)}, DISP_E_TYPEMISMATCH},
      {L"RemoveDraft", DISPATCH_METHOD, {}, DISP_E_BADPARAMCOUNT},
      {L"RemoveDraft", DISPATCH_METHOD, {Position(1), Position(2)}, DISP_E_BADPARAMCOUNT},
      {L"RemoveDraft", DISPATCH_METHOD, {Missing()}, DISP_E_PARAMNOTOPTIONAL},
      {L"CurrentPick", DISPATCH_PROPERTYPUT, {Position(1)}, DISP_E_MEMBERNOTFOUND},
      {L"Elsewhere", DISPATCH_METHOD, {}, DISP_E_UNKNOWNNAME},
  };
  for (const auto& call : kCalls) {
    SetErrorInfo(0, nullptr);
    const HRESULT result = Call(season, call.member, call.how, call.arguments);
    EXPECT_EQ(result, call.expected) << ToNarrow(call.member) << " " << std::hex << result;
    if (result != DISP_E_UNKNOWNNAME) {
      EXPECT_NE(LastDescription().find(call.member), std::wstring::npos) << ToNarrow(call.member);
    }
  }
  // Objects of another kind, and none.
  EXPECT_TRUE(FAILED(Call(season, L"AddManager", DISPATCH_METHOD, {Object(other.Get())})));
  VARIANT result;
  VariantInit(&result);
  EXPECT_EQ(Call(season, L"AddManager", DISPATCH_METHOD, {Object(nullptr)}, &result), S_OK);
  EXPECT_EQ(V_VT(&result), VT_BOOL);
  EXPECT_EQ(V_BOOL(&result), VARIANT_FALSE);
}

TEST_F(Errors, OfUseFromASecondApartment) {
  const auto season = Create<::ISeasonInfo>(L"SeasonInfo");
  season->put_Year(2052);
  ComPtr<IStream> parcel;
  ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(__uuidof(::ISeasonInfo), season.Get(), parcel.Put()), S_OK);

  HRESULT raw = S_OK;
  LONG rawYear = 7;
  HRESULT marshalled = E_FAIL;
  LONG year = 0;
  const DWORD here = GetCurrentThreadId();
  std::thread other([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    raw = season->get_Year(&rawYear);
    ComPtr<::ISeasonInfo> proxy;
    marshalled = CoGetInterfaceAndReleaseStream(parcel.Detach(), __uuidof(::ISeasonInfo), proxy.PutVoid());
    if (SUCCEEDED(marshalled)) marshalled = proxy->get_Year(&year);
    proxy = {};
    CoUninitialize();
    PostThreadMessageW(here, WM_QUIT, 0, 0);
  });
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0)
    DispatchMessageW(&message);
  other.join();
  EXPECT_EQ(raw, RPC_E_WRONG_THREAD);
  EXPECT_EQ(rawYear, 0) << "what is not filled is empty";
  EXPECT_EQ(marshalled, S_OK);
  EXPECT_EQ(year, 2052);
}

TEST_F(Errors, OfTheServiceAreShownInABoxWithOneButton) {
  // With no file open, loading fails and says so to the user. Somebody else presses the button.
  const auto service = OpenService();
  ASSERT_EQ(service->CloseDatabase(), S_OK);

  std::wstring text;
  int buttons = 0;
  std::thread user([&] {
    HWND box = nullptr;
    for (int i = 0; i < 500 && !box; ++i) {
      Sleep(10);
      box = FindWindowW(nullptr, L"Halcyra Service");
    }
    if (!box) return;
    for (HWND part = GetWindow(box, GW_CHILD); part; part = GetWindow(part, GW_HWNDNEXT)) {
      wchar_t words[512] = L"";
      wchar_t kind[64] = L"";
      GetWindowTextW(part, words, 512);
      GetClassNameW(part, kind, 64);
      if (std::wstring(kind) == L"Button" && IsWindowVisible(part)) ++buttons;
      if (std::wstring(kind) == L"Static" && *words) text = words;
    }
    PostMessageW(box, WM_COMMAND, IDOK, 0);
  });
  ComPtr<::IKeyedCollection> positions;
  EXPECT_EQ(service->GetPlayerPositions(positions.Put()), S_OK);
  user.join();
  EXPECT_FALSE(positions);
  EXPECT_EQ(buttons, 1);
  EXPECT_EQ(text.find(L"Error in loading positions.\r\n"), 0U) << ToNarrow(text);
}

}  // namespace
}  // namespace HLDataSrvc::Com::test
