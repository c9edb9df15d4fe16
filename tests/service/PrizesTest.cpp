#include "HLIData/Error.h"
#include "tests/service/LeagueTest.h"

namespace HLDataSrvc {
namespace {

using test::Box;
using test::Line;
using test::Lines;

constexpr char kTypes[] = "select * from [prize type info]";
constexpr char kPrizes[] = "select * from [prize info]";

class PrizesTest : public test::LeagueTest {};

TEST_F(PrizesTest, TypesAndPrizesAreReadOnceAndPrizesShareTheirTypes) {
  Open("league.mdb");
  const auto prizes = m_service->GetPrizeTmpls();
  const auto types = m_service->GetPrizeTypes();
  EXPECT_EQ(Statements(), (Lines{kTypes, kPrizes}));
  EXPECT_EQ(m_service->GetPrizeTmpls(), prizes);
  EXPECT_EQ(m_service->GetPrizeTypes(), types);
  EXPECT_TRUE(m_engine->calls.empty());

  Lines lines;
  for (const auto& type : *types)
    lines.push_back(Line(type->ID(), type->Name()));
  EXPECT_EQ(test::Sorted(lines), test::ExpectedRows("prize type info"));
  lines.clear();
  for (const auto& prize : *prizes) {
    EXPECT_EQ(prize->PrizeType(), types->Item("K" + std::to_string(prize->PrizeType()->ID())));
    EXPECT_EQ(prizes->Item("K" + std::to_string(prize->ID())), prize);
    lines.push_back(Line(prize->ID(), prize->Desc(), prize->PrizeType()->ID()));
  }
  EXPECT_EQ(test::Sorted(lines), test::ExpectedRows("prize info"));
}

TEST_F(PrizesTest, FailingTypesAreRaisedAndPrizesWithoutThemAreNotBegun) {
  EXPECT_THROW(m_service->GetPrizeTypes(), HLIData::Error);
  EXPECT_TRUE(Boxes().empty());
  EXPECT_EQ(m_service->GetPrizeTmpls(), nullptr);
  EXPECT_EQ(Boxes(), (Lines{Box("Error in loading prizes.", "The database is not open.")}));
  Open("league.mdb");
  EXPECT_EQ(m_service->GetPrizeTmpls()->Count(), 20);
}

TEST_F(PrizesTest, PrizesReadBeforeOneOfAnUnknownTypeAreServedFromThenOn) {
  for (const char* prize : {"3|Ghost|7", "3|No type|"}) {
    OpenLoose({{"prize info", {prize, "4|After|1"}}});
    EXPECT_EQ(m_service->GetPrizeTmpls(), nullptr);
    const std::string type = prize[2] == 'G' ? "7" : "0";
    EXPECT_EQ(Boxes(), (Lines{Box("Error in loading prizes.", "Prize 3 in [prize info] is of type " + type +
                                                                  ", which is not in [prize type info].")}));
    Statements();
    EXPECT_EQ(Keys(m_service->GetPrizeTmpls()), "K1 K2");
    EXPECT_EQ(Statements(), Lines{});
    ASSERT_NE(Season(), nullptr) << "its prizes are among them";
    EXPECT_TRUE(Boxes().empty());
  }
}

}  // namespace
}  // namespace HLDataSrvc
