// The interfaces as the type library and their slots declare them, and the classes that programs can make.

#include <vector>

#include "tests/com/ComTest.h"

namespace HLDataSrvc::Com::test {
namespace {

using Members = std::vector<std::wstring>;

class Interfaces : public ComTest {
 protected:
  /// The members of an object's default interface in the order of their slots, after the seven that every
  /// dispatch interface has; "=" marks one that puts a value.
  static Members MembersInSlots(const ComPtr<IDispatch>& object) {
    ComPtr<ITypeInfo> byName;
    ComPtr<ITypeInfo> bySlot;
    HREFTYPE reference = 0;
    EXPECT_EQ(object->GetTypeInfo(0, 0, byName.Put()), S_OK);
    EXPECT_EQ(byName->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), S_OK);
    EXPECT_EQ(byName->GetRefTypeInfo(reference, bySlot.Put()), S_OK);
    TYPEATTR* attributes = nullptr;
    EXPECT_EQ(bySlot->GetTypeAttr(&attributes), S_OK);
    Members members(attributes->cFuncs);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      FUNCDESC* function = nullptr;
      Text name;
      EXPECT_EQ(bySlot->GetFuncDesc(i, &function), S_OK);
      bySlot->GetDocumentation(function->memid, name.Put(), nullptr, nullptr, nullptr);
      const auto slot = static_cast<std::size_t>(function->oVft) / sizeof(void*);
      const bool isPut = (function->invkind & (INVOKE_PROPERTYPUT | INVOKE_PROPERTYPUTREF)) != 0;
      if (slot >= 7 && slot - 7 < members.size()) members[slot - 7] = name.Value() + (isPut ? L"=" : L"");
      bySlot->ReleaseFuncDesc(function);
    }
    bySlot->ReleaseTypeAttr(attributes);
    return members;
  }
};

TEST_F(Interfaces, HaveTheirMembersInOrder) {
  const struct {
    const wchar_t* name;
    Members members;
  } kInOrder[] = {
      {L"DataService",
       {L"CurrentSeasonID",
        L"CurrentSeasonID=",
        L"CurrentSeasonYear",
        L"CurrentSeasonYear=",
        L"GetCurrentSeasonInfo",
        L"DiscardCurrentSeasonInfo",
        L"AddSeason",
        L"SaveCurrentSeasonInfo",
        L"GetAllSeasons",
        L"Initialize",
        L"SaveManagersPlaying",
        L"SaveRanking",
        L"DisableRanking",
        L"GetPlayerPositions",
        L"SaveDrafts",
        L"DeleteDrafts",
        L"DisableDrafting",
        L"GetTeams",
        L"Search",
        L"GetSettings",
        L"SaveSettings",
        L"UpdatePlayer",
        L"UpdatePosition",
        L"UpdateManager",
        L"UpdatePrize",
        L"GetPrizeTmpls",
        L"GetPrizeTypes",
        L"AddWinning",
        L"SaveWinnings",
        L"CloseDatabase",
        L"OpenDatabase",
        L"Delete"}},
      {L"SeasonInfo",
       {L"ID",
        L"Year",
        L"Year=",
        L"NoOfManagers",
        L"NoOfManagers=",
        L"NoOfRounds",
        L"NoOfRounds=",
        L"MoneyContribution",
        L"MoneyContribution=",
        L"Prizes",
        L"Prizes=",
        L"NoOfRegularWeeks",
        L"NoOfRegularWeeks=",
        L"TotalNoOfWeeks",
        L"TotalNoOfWeeks=",
        L"IsRankingLocked",
        L"IsRankingLocked=",
        L"IsDraftLocked",
        L"IsDraftLocked=",
        L"IsSeasonLocked",
        L"IsSeasonLocked=",
        L"HasSeasonStarted",
        L"HasSeasonStarted=",
        L"Managers",
        L"Winnings",
        L"Drafts",
        L"CurrentPick",
        L"IsPickableTaken",
        L"UpdateDraft",
        L"RemoveDraft",
        L"AddPrize",
        L"AddManager",
        L"RemoveManager"}},
      {L"SettingInfo", {L"CurrentSeason=", L"CurrentSeason"}},
      {L"WinningInfo",
       {L"ID", L"Key", L"SeasonID", L"SeasonID=", L"ManagerID", L"ManagerID=", L"PrizeID", L"PrizeID=",
        L"Week", L"Week=", L"Action=", L"Action"}},
      {L"DraftInfo", {L"DraftNo", L"DraftNo=", L"PlayerOrTeam", L"PlayerOrTeam=", L"Manager", L"Manager="}},
      {L"ManagerInfo",
       {L"ID", L"FirstName", L"LastName", L"Rank", L"Rank=", L"IsFeePaid", L"IsFeePaid=", L"ManagerTmpl"}},
      {L"ManagerTmplInfo", {L"ID", L"FirstName", L"LastName"}},
      {L"PlayerInfo", {L"ID", L"LastName", L"FirstName", L"Position", L"Team", L"IsRetired"}},
      {L"TeamInfo", {L"ID", L"Abbr", L"Name", L"Nickname", L"Position"}},
      {L"PositionInfo", {L"ID", L"Abbr", L"Desc"}},
      {L"PrizeInfo", {L"ID", L"Desc", L"PrizeType", L"Amount", L"Amount=", L"PrizeTmpl"}},
      {L"PrizeTmplInfo", {L"ID", L"Desc", L"PrizeType"}},
      {L"PrizeTypeInfo", {L"ID", L"Name"}},
      {L"PrizeCollection", {L"Item", L"Count", L"_NewEnum", L"Add", L"Remove"}},
  };
  for (const auto& each : kInOrder) {
    const auto object = Create<IDispatch>(each.name);
    EXPECT_EQ(MembersInSlots(object), each.members) << ToNarrow(each.name);
  }
}

TEST_F(Interfaces, AreReachedThroughTheirSlots) {
  // The object's table of functions as a program in any language sees it: 7 standard slots, then the members.
  const auto service = Create<::IDataService>(L"DataService");
  void** const slots = *reinterpret_cast<void***>(service.Get());
  using Get = HRESULT(STDMETHODCALLTYPE*)(void*, LONG*);
  using Let = HRESULT(STDMETHODCALLTYPE*)(void*, LONG);
  const auto getID = reinterpret_cast<Get>(slots[7]);
  const auto letID = reinterpret_cast<Let>(slots[8]);
  const auto getYear = reinterpret_cast<Get>(slots[9]);
  LONG value = -1;
  EXPECT_EQ(letID(service.Get(), 42), S_OK);
  EXPECT_EQ(getID(service.Get(), &value), S_OK);
  EXPECT_EQ(value, 42);
  EXPECT_EQ(getYear(service.Get(), &value), S_OK);
  EXPECT_EQ(value, 0);
}

TEST_F(Interfaces, OfPickablesAnswerByNameToBothFaces) {
  const auto player = Create<::IPickable>(L"PlayerInfo");
  const auto callable = player.As<IDispatch>();
  for (const wchar_t* name : {L"PickType", L"LastName", L"team"}) {
    std::wstring text = name;
    LPOLESTR names[] = {text.data()};
    DISPID number = DISPID_UNKNOWN;
    EXPECT_EQ(player->GetIDsOfNames(IID_NULL, names, 1, 0, &number), S_OK);
    DISPPARAMS none{};
    VARIANT value;
    VariantInit(&value);
    EXPECT_EQ(callable->Invoke(number, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr),
              S_OK);
    VariantClear(&value);
  }
}

TEST_F(Interfaces, StartOutEmpty) {
  const auto player = Create<::IPlayerInfo>(L"PlayerInfo");
  LONG id = -1;
  Text name(L"before");
  VARIANT_BOOL isRetired = VARIANT_TRUE;
  ComPtr<::ITeamInfo> team;
  EXPECT_EQ(player->get_ID(&id), S_OK);
  SysFreeString(*name.Put());
  EXPECT_EQ(player->get_LastName(name.Put()), S_OK);
  EXPECT_EQ(player->get_IsRetired(&isRetired), S_OK);
  EXPECT_EQ(player->get_Team(team.Put()), S_OK);
  EXPECT_EQ(id, 0);
  EXPECT_EQ(name.Value(), L"");
  EXPECT_EQ(isRetired, VARIANT_FALSE);
  EXPECT_FALSE(team);
}

TEST_F(Interfaces, OfClassesAreMadeByFactoriesThatLockTheLibrary) {
  CLSID id{};
  ASSERT_EQ(CLSIDFromProgID(L"HLDataSrvc.WinningInfo", &id), S_OK);
  ComPtr<IClassFactory> factory;
  ASSERT_EQ(CoGetClassObject(id, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, factory.PutVoid()), S_OK);
  const auto outer = Create<IUnknown>(L"PlayerInfo");
  ComPtr<IUnknown> object;
  EXPECT_EQ(factory->CreateInstance(outer.Get(), IID_IUnknown, object.PutVoid()), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(::IPlayerInfo), object.PutVoid()), E_NOINTERFACE);
  EXPECT_FALSE(object);
  using CanUnload = HRESULT(STDAPICALLTYPE*)();
  const auto canUnload = reinterpret_cast<CanUnload>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"HLDataSrvc.dll"), "DllCanUnloadNow")));
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(canUnload(), S_FALSE);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
}

}  // namespace
}  // namespace HLDataSrvc::Com::test
