// Collections: the component's own, changed and walked over from outside.

#include <vector>

#include "tests/com/ComTest.h"

namespace HLDataSrvc::Com::test {
namespace {

class Collection : public ComTest {
 protected:
  /// A prize of a season, identified by its amount.
  static ComPtr<::IPrizeInfo> Prize(LONG amount) {
    const auto prize = Create<::IPrizeInfo>(L"PrizeInfo");
    EXPECT_EQ(prize->put_Amount(amount), S_OK);
    return prize;
  }
  static VARIANT Currency(double amount) {
    VARIANT value;
    V_VT(&value) = VT_CY;
    EXPECT_EQ(VarCyFromR8(amount, &V_CY(&value)), S_OK);
    return value;
  }
  static std::vector<LONG> AmountsIn(const ComPtr<::IKeyedCollection>& prizes) {
    std::vector<LONG> amounts;
    ComPtr<IUnknown> walk;
    EXPECT_EQ(prizes->get__NewEnum(walk.Put()), S_OK);
    const auto items = walk.As<IEnumVARIANT>();
    VARIANT item;
    VariantInit(&item);
    while (items->Next(1, &item, nullptr) == S_OK) {
      ComPtr<::IPrizeInfo> prize;
      LONG amount = 0;
      EXPECT_EQ(V_DISPATCH(&item)->QueryInterface(__uuidof(::IPrizeInfo), prize.PutVoid()), S_OK);
      prize->get_Amount(&amount);
      amounts.push_back(amount);
      VariantClear(&item);
    }
    return amounts;
  }
  static HRESULT Add(const ComPtr<::IKeyedCollection>& prizes, LONG amount, VARIANT key = Missing(),
                     VARIANT before = Missing(), VARIANT after = Missing()) {
    return prizes->Add(Prize(amount).Get(), key, before, after);
  }
};

TEST_F(Collection, KeepsItsOrder) {
  const auto prizes = Create<::IKeyedCollection>(L"PrizeCollection");
  const Text one(L"one");
  EXPECT_EQ(Add(prizes, 1, Key(one)), S_OK);
  EXPECT_EQ(Add(prizes, 2), S_OK);
  EXPECT_EQ(Add(prizes, 3, Missing(), Position(1)), S_OK);
  EXPECT_EQ(Add(prizes, 4, Missing(), Missing(), Key(one)), S_OK);
  EXPECT_EQ(Add(prizes, 5, Missing(), Key(one)), S_OK);
  EXPECT_EQ(AmountsIn(prizes), (std::vector<LONG>{3, 5, 1, 4, 2}));
  EXPECT_EQ(prizes->Remove(Position(1)), S_OK);
  EXPECT_EQ(prizes->Remove(Key(one)), S_OK);
  EXPECT_EQ(AmountsIn(prizes), (std::vector<LONG>{5, 4, 2}));
  for (const VARTYPE type : {VT_UI1, VT_I2, VT_R8, VT_CY, VT_DECIMAL}) {
    VARIANT second = Position(2);
    EXPECT_EQ(VariantChangeType(&second, &second, 0, type), S_OK);
    LONG amount = 0;
    EXPECT_EQ(Item<::IPrizeInfo>(prizes, second)->get_Amount(&amount), S_OK) << type;
    EXPECT_EQ(amount, 4) << type;
  }
}

TEST_F(Collection, RefusesWhatItCannotDo) {
  const auto prizes = Create<::IKeyedCollection>(L"PrizeCollection");
  const Text key(L"key");
  const Text unknown(L"unknown");
  ASSERT_EQ(Add(prizes, 1, Key(key)), S_OK);
  const struct {
    HRESULT result;
    std::wstring told;
    HRESULT expected;
    const wchar_t* description;
  } kRefusals[] = {
      {Add(prizes, 2, Key(key)), LastDescription(), Numbered(457), L"already holds"},
      {Add(prizes, 2, Missing(), Key(unknown)), LastDescription(), Numbered(5), L"unknown"},
      {Add(prizes, 2, Missing(), Position(2)), LastDescription(), Numbered(9), L"Position 2"},
      {Add(prizes, 2, Position(2)), LastDescription(), Numbered(13), L"A key"},
      {Add(prizes, 2, Missing(), Position(1), Position(1)), LastDescription(), E_INVALIDARG, L"not both"},
      {prizes->Add(nullptr, Missing(), Missing(), Missing()), LastDescription(), Numbered(91), L"empty"},
      {prizes->Add(prizes.Get(), Missing(), Missing(), Missing()), LastDescription(), Numbered(13),
       L"a prize"},
      {prizes->Remove(Position(0)), LastDescription(), Numbered(9), L"Position 0"},
      {prizes->Remove(Key(unknown)), LastDescription(), Numbered(5), L"unknown"},
      {prizes->Remove(Missing()), LastDescription(), Numbered(13), L"key"},
      {prizes->Remove(Currency(1e10)), LastDescription(), DISP_E_OVERFLOW, L"32 bits"},
      {prizes->get_Item(Position(1), nullptr), LastDescription(), E_POINTER, L"null"},
  };
  for (const auto& refusal : kRefusals) {
    EXPECT_EQ(refusal.result, refusal.expected) << ToNarrow(refusal.description);
    EXPECT_NE(refusal.told.find(refusal.description), std::wstring::npos) << ToNarrow(refusal.told);
  }
  EXPECT_EQ(AmountsIn(prizes), (std::vector<LONG>{1}));
}

TEST_F(Collection, OfASeasonIsTheSeasonsOwn) {
  const auto season = Create<::ISeasonInfo>(L"SeasonInfo");
  ComPtr<::IKeyedCollection> held;
  EXPECT_EQ(season->get_Prizes(held.Put()), S_OK);
  EXPECT_FALSE(held) << "a season made by a program has none";
  const auto prizes = Create<::IKeyedCollection>(L"PrizeCollection");
  EXPECT_EQ(season->putref_Prizes(prizes.Get()), S_OK);
  EXPECT_EQ(season->get_Prizes(held.Put()), S_OK);
  EXPECT_TRUE(AreSame(prizes, held));

  const auto master = Create<::IPrizeTmplInfo>(L"PrizeTmplInfo");
  VARIANT_BOOL isDone = VARIANT_FALSE;
  EXPECT_EQ(season->AddPrize(master.Get(), &isDone), S_OK);
  EXPECT_EQ(isDone, VARIANT_TRUE);
  EXPECT_EQ(CountOf(prizes), 1) << "what is added to the season is in the collection at hand";
  EXPECT_EQ(prizes->Remove(Key(Text(L"K0"))), S_OK);
  EXPECT_EQ(season->AddPrize(master.Get(), &isDone), S_OK);
  EXPECT_EQ(CountOf(prizes), 1) << "and what is taken out is out of the season";

  const auto service = OpenService();
  EXPECT_EQ(season->putref_Prizes(Found(service, SearchTypeManagers).Get()), Numbered(13));
  EXPECT_NE(LastDescription().find(L"a collection of the right kind"), std::wstring::npos);
}

}  // namespace
}  // namespace HLDataSrvc::Com::test
