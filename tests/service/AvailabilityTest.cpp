#include <utility>

#include "HLIData/Error.h"
#include "tests/service/ServiceTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;

constexpr char kReason[] = "This operation is not available in this version.";

class AvailabilityTest : public test::ServiceTest {};

TEST_F(AvailabilityTest, OperationsThatAreMissingFailWithOneMessageBoxThatSaysSo) {
  DataService& service = *m_service;
  std::shared_ptr<IWinningInfo> winning;
  const auto search = [&](SearchType type) { return service.Search(type, "", false, false) != nullptr; };
  const std::vector<std::pair<std::string, std::function<bool()>>> operations = {
      {"Error in loading season info.", [&] { return service.GetCurrentSeasonInfo() != nullptr; }},
      {"Error in loading season info.", [&] { return service.DiscardCurrentSeasonInfo(); }},
      {"Error in saving season info.", [&] { return service.AddSeason(2005) != nullptr; }},
      {"Error in saving season info.", [&] { return service.SaveCurrentSeasonInfo(); }},
      {"Error in loading season info.", [&] { return service.GetAllSeasons() != nullptr; }},
      {"Error in saving playing info.", [&] { return service.SaveManagersPlaying(); }},
      {"Error in saving ranking info.", [&] { return service.SaveRanking(); }},
      {"Error in disabling ranking.", [&] { return service.DisableRanking(); }},
      {"Error in disabling drafting.", [&] { return service.DisableDrafting(); }},
      {"Error in loading positions.", [&] { return service.GetPlayerPositions() != nullptr; }},
      {"Error in saving drafts.", [&] { return service.SaveDrafts(); }},
      {"Error in deleting drafts.", [&] { return service.DeleteDrafts(); }},
      {"Error in loading teams.", [&] { return service.GetTeams() != nullptr; }},
      {"Error in searching players/teams.", [&] { return search(SearchType::PlayersAndTeams); }},
      {"Error in searching managers.", [&] { return search(SearchType::Managers); }},
      {"Error in searching prizes.", [&] { return search(SearchType::Prizes); }},
      {"Error in searching positions.", [&] { return search(SearchType::Positions); }},
      {"Error in loading prizes.", [&] { return service.GetPrizeTmpls() != nullptr; }},
      {"Error in saving winnings.", [&] { return service.AddWinning(winning); }},
      {"Error in saving winnings.", [&] { return service.SaveWinnings(); }},
  };
  for (const auto& [sentence, operation] : operations) {
    m_host->messages.clear();
    EXPECT_FALSE(operation()) << sentence;
    EXPECT_EQ(m_host->messages,
              (std::vector<test::RecordingHost::Message>{{sentence + "\r\n" + kReason, "Halcyra Service"}}));
  }
}

TEST_F(AvailabilityTest, OperationsWithAMessageOfTheirOwnPutItThere) {
  std::int32_t id = 0;
  std::shared_ptr<IPlayerInfo> player;
  std::shared_ptr<IPositionInfo> position;
  std::shared_ptr<IManagerTmplInfo> manager;
  std::shared_ptr<IPrizeTmplInfo> prize;
  std::string message[5];
  EXPECT_FALSE(m_service->UpdatePlayer("Lee", "Ann", 1, 1, false, id, player, message[0]));
  EXPECT_FALSE(m_service->UpdatePosition("Quarterback", "QB", id, position, message[1]));
  EXPECT_FALSE(m_service->UpdateManager("Lee", "Ann", id, manager, message[2]));
  EXPECT_FALSE(m_service->UpdatePrize("Cup", 1, id, prize, message[3]));
  EXPECT_FALSE(m_service->Delete(DeleteType::Player, 1, message[4]));
  for (int i = 0; i < 4; ++i)
    EXPECT_EQ(message[i], kReason);
  EXPECT_EQ(message[4], std::string("Error in deleting record.\r\n") + kReason);
  EXPECT_TRUE(m_host->messages.empty());
}

TEST_F(AvailabilityTest, OperationsThatRaiseRaise) {
  EXPECT_THROW(m_service->GetPrizeTypes(), Error);
  EXPECT_THROW(m_service->CurrentSeasonYear(2005), Error);
  EXPECT_EQ(m_service->CurrentSeasonYear(), 0);
  EXPECT_TRUE(m_host->messages.empty());
}

TEST_F(AvailabilityTest, SearchTypeWithoutANameAnswersNoneAndShowsNothing) {
  EXPECT_EQ(m_service->Search(SearchType{0}, "a", false, false), nullptr);
  EXPECT_EQ(m_service->Search(SearchType{5}, "a", false, false), nullptr);
  EXPECT_TRUE(m_host->messages.empty());
}

}  // namespace
}  // namespace HLDataSrvc
