// One record, one object; and objects that programs implement themselves.

#include "tests/com/ComTest.h"
#include "tests/com/OwnPickable.h"

namespace HLDataSrvc::Com::test {
namespace {

class Identity : public ComTest {};

TEST_F(Identity, ARecordAlwaysAnswersAsTheSameObject) {
  const auto service = OpenService();
  const auto season = SeasonOf(service, 2041);
  ComPtr<::ISeasonInfo> again;
  EXPECT_EQ(service->GetCurrentSeasonInfo(again.Put()), S_OK);
  EXPECT_TRUE(AreSame(season, again));
  EXPECT_TRUE(AreSame(ManagersOf(season), ManagersOf(season)));

  const auto master = Item<::IManagerTmplInfo>(Found(service, SearchTypeManagers), Position(1));
  const auto manager = Item<::IManagerInfo>(ManagersOf(season), Position(1));
  ComPtr<::IManagerTmplInfo> ofManager;
  EXPECT_EQ(manager->get_ManagerTmpl(ofManager.Put()), S_OK);
  EXPECT_TRUE(AreSame(master, ofManager)) << "the one that was handed in";
  EXPECT_TRUE(AreSame(master.As<::IPickable>(), ofManager));
  EXPECT_EQ(master.As<::IPickable>().As<::IManagerTmplInfo>().Get(), master.Get());
  EXPECT_FALSE(master.As<::IPlayerInfo>());
}

TEST_F(Identity, APickedRecordComesBack) {
  const auto service = OpenService();
  const auto season = SeasonOf(service, 2042);
  const auto pick = Item<::IPickable>(Found(service, SearchTypePlayersAndTeams), Position(1));
  const auto manager = Item<::IManagerInfo>(ManagersOf(season), Position(2));
  ASSERT_EQ(season->UpdateDraft(pick.Get(), 2, manager.Get()), S_OK);

  ComPtr<::IKeyedCollection> drafts;
  ASSERT_EQ(season->get_Drafts(drafts.Put()), S_OK);
  const auto draft = Item<::IDraftInfo>(drafts, Position(2));
  ComPtr<::IPickable> picked;
  ComPtr<::IManagerInfo> who;
  EXPECT_EQ(draft->get_PlayerOrTeam(picked.Put()), S_OK);
  EXPECT_EQ(draft->get_Manager(who.Put()), S_OK);
  EXPECT_TRUE(AreSame(pick, picked));
  EXPECT_TRUE(AreSame(manager, who));

  EXPECT_EQ(draft->putref_Manager(nullptr), S_OK);
  who = {};
  EXPECT_EQ(draft->get_Manager(who.Put()), S_OK);
  EXPECT_FALSE(who);
}

TEST_F(Identity, RecordsOutliveTheServiceAndItsDatabase) {
  auto service = OpenService();
  const auto season = SeasonOf(service, 2043);
  const auto managers = ManagersOf(season);
  const auto manager = Item<::IManagerInfo>(managers, Position(1));
  service = {};
  LONG year = 0;
  Text name;
  EXPECT_EQ(season->get_Year(&year), S_OK);
  EXPECT_EQ(year, 2043);
  EXPECT_EQ(manager->get_LastName(name.Put()), S_OK);
  EXPECT_NE(name.Value(), L"");
  VARIANT_BOOL isDone = VARIANT_FALSE;
  EXPECT_EQ(season->RemoveManager(manager.Get(), &isDone), S_OK);
  EXPECT_EQ(isDone, VARIANT_TRUE);
  EXPECT_EQ(CountOf(managers), 1);
  OpenService();  // the first has closed the file
}

TEST_F(Identity, APickableOfTheProgramIsTakenWherePickablesAre) {
  const auto service = OpenService();
  const auto season = SeasonOf(service, 2044);
  const auto empty = Make<OwnPickable>(PickTypeNone, 7);
  Text message(L"as before");
  VARIANT_BOOL isTaken = VARIANT_FALSE;
  EXPECT_EQ(season->IsPickableTaken(empty.Get(), message.Put(), &isTaken), S_OK);
  EXPECT_EQ(isTaken, VARIANT_TRUE) << "in doubt it is";
  EXPECT_EQ(message.Value(), L"as before");

  const auto manager = Item<::IManagerInfo>(ManagersOf(season), Position(1));
  EXPECT_EQ(season->UpdateDraft(empty.Get(), 1, manager.Get()), S_OK);
  ComPtr<::IKeyedCollection> drafts;
  ASSERT_EQ(season->get_Drafts(drafts.Put()), S_OK);
  const auto draft = Item<::IDraftInfo>(drafts, Key(Text(L"N7")));
  ComPtr<::IPickable> picked;
  EXPECT_EQ(draft->get_PlayerOrTeam(picked.Put()), S_OK);
  EXPECT_FALSE(picked);

  const auto found = Found(service, SearchTypePlayersAndTeams);
  EXPECT_EQ(found->Add(empty.Get(), Key(Text(L"own")), Missing(), Missing()), S_OK);
  EXPECT_TRUE(AreSame(Item<::IPickable>(found, Key(Text(L"own"))), empty)) << "it answers as itself";

  const auto pretender = Make<OwnPickable>(PickTypePlayer, 3);
  EXPECT_EQ(draft->putref_PlayerOrTeam(pretender.Get()), Numbered(13));
  EXPECT_NE(LastDescription().find(L"Player 3"), std::wstring::npos);

  const auto failing = Make<OwnPickable>(PickTypePlayer, 3, E_ACCESSDENIED);
  EXPECT_EQ(season->UpdateDraft(failing.Get(), 2, manager.Get()), E_ACCESSDENIED);
}

}  // namespace
}  // namespace HLDataSrvc::Com::test
