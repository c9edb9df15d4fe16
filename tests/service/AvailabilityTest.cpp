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
  const auto search = [&](SearchType type) { return service.Search(type, "", false, false) != nullptr; };
  const std::vector<std::pair<std::string, std::function<bool()>>> operations = {
      {"Error in searching players/teams.", [&] { return search(SearchType::PlayersAndTeams); }},
      {"Error in searching managers.", [&] { return search(SearchType::Managers); }},
      {"Error in searching prizes.", [&] { return search(SearchType::Prizes); }},
      {"Error in searching positions.", [&] { return search(SearchType::Positions); }},
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

TEST_F(AvailabilityTest, SearchTypeWithoutANameAnswersNoneAndShowsNothing) {
  EXPECT_EQ(m_service->Search(SearchType{0}, "a", false, false), nullptr);
  EXPECT_EQ(m_service->Search(SearchType{5}, "a", false, false), nullptr);
  EXPECT_TRUE(m_host->messages.empty());
}

}  // namespace
}  // namespace HLDataSrvc
