#include <algorithm>
#include <sstream>

#include <gtest/gtest.h>

#include "cli/output/DraftBoard.h"
#include "league/Utf8.h"
#include "records/DraftInfo.h"
#include "records/HLUtils.h"
#include "records/ManagerInfo.h"
#include "records/ManagerTmplInfo.h"
#include "records/PlayerInfo.h"
#include "records/PositionInfo.h"
#include "records/SeasonInfo.h"

namespace cli {

using namespace HLLeague;

namespace {

namespace Records = HLDataSrvc;

std::shared_ptr<Records::ManagerInfo> Manager(std::int32_t rank) {
  const auto master = std::make_shared<Records::ManagerTmplInfo>();
  master->ID(100 + rank);
  master->FirstName("Åsa");
  master->LastName("Ковленко-" + std::to_string(rank));
  auto manager = std::make_shared<Records::ManagerInfo>();
  manager->ManagerTmpl(master);
  manager->Rank(rank);
  return manager;
}

/// Managers of rank 1 to `managers`, and an empty draft.
std::shared_ptr<Records::SeasonInfo> Season(std::int32_t managers, std::int32_t rounds) {
  auto season = std::make_shared<Records::SeasonInfo>();
  season->Year(2030);
  season->NoOfManagers(managers);
  season->NoOfRounds(rounds);
  const auto all = std::make_shared<HLIData::KeyedCollection<HLIData::IManagerInfo>>();
  for (std::int32_t rank = 1; rank <= managers; ++rank)
    all->Add(Manager(rank), "K" + std::to_string(100 + rank));
  season->Managers(all);
  const auto drafts = std::make_shared<HLIData::KeyedCollection<HLIData::IDraftInfo>>();
  for (std::int32_t number = 1; number <= managers * rounds; ++number) {
    const auto pick = std::make_shared<Records::DraftInfo>();
    pick->DraftNo(number);
    drafts->Add(pick, "N" + std::to_string(number));
  }
  season->Drafts(drafts);
  return season;
}

/// Makes a pick by the manager whose turn it is.
void Fill(HLIData::ISeasonInfo& season, std::int32_t number) {
  const auto position = std::make_shared<Records::PositionInfo>();
  position->Abbr("QB");
  const auto player = std::make_shared<Records::PlayerInfo>();
  player->ID(number);
  player->FirstName("山田");
  player->LastName("Tarō-" + std::to_string(number));
  player->Position(position);
  season.UpdateDraft(player, number, DraftOrder(season).ManagerOn(number));
}

std::vector<std::string> Board(const HLIData::ISeasonInfo& season, std::size_t width) {
  const Picks picks = PicksOf(season);
  return DraftBoard(season, picks, picks).Lines(width);
}

/// The words of all lines that begin with a round's number and an arrow, without these.
std::vector<std::vector<std::string>> Rounds(const std::vector<std::string>& lines) {
  std::vector<std::vector<std::string>> rounds;
  for (const std::string& line : lines) {
    std::istringstream words(line);
    std::string number;
    std::string arrow;
    if (!(words >> number >> arrow) || (arrow != "→" && arrow != "←")) continue;
    EXPECT_EQ(arrow, std::stoi(number) % 2 == 1 ? "→" : "←") << line;
    const auto round = static_cast<std::size_t>(std::stoi(number));
    rounds.resize(std::max(rounds.size(), round));
    for (std::string word; words >> word;)
      rounds[round - 1].push_back(word);
  }
  return rounds;
}

TEST(DraftBoard, RunsBackInEveryEvenRound) {
  const auto season = Season(4, 3);
  EXPECT_EQ(Rounds(Board(*season, 100)),
            (std::vector<std::vector<std::string>>{
                {">1", "on", "the", "clock", "2", "3", "4"}, {"8", "7", "6", "5"}, {"9", "10", "11", "12"}}));
}

TEST(DraftBoard, FitsEveryWidthWithEveryNumberOfManagersAndLeavesNoPickOut) {
  for (std::int32_t managers = 1; managers <= 25; managers += managers < 5 ? 1 : 4) {
    for (const std::int32_t rounds : {1, 9, 10}) {
      const auto season = Season(managers, rounds);
      for (std::int32_t number = 1; number <= managers * rounds; number += 3)
        Fill(*season, number);
      for (const std::size_t width : {24U, 79U, 80U, 132U, 400U}) {
        SCOPED_TRACE(std::to_string(managers) + " x " + std::to_string(rounds) + " in " +
                     std::to_string(width));
        const auto lines = Board(*season, width);
        std::string all;
        for (const std::string& line : lines) {
          EXPECT_LE(DisplayWidth(line), width) << line;
          all += line + " ";
        }
        std::size_t cells = 0;
        for (const auto& round : Rounds(lines))
          cells += static_cast<std::size_t>(std::count(round.begin(), round.end(), "QB"));
        EXPECT_EQ(cells, static_cast<std::size_t>(managers * rounds + 2) / 3);
        for (std::int32_t number = 1; number <= managers * rounds; ++number) {
          if (number % 3 != 1 && number != 2) {
            EXPECT_NE(all.find(" " + std::to_string(number) + " "), std::string::npos) << number;
          }
        }
      }
    }
  }
}

TEST(DraftBoard, PicksOfNegativeNumbersHaveNoPlace) {
  const auto season = Season(-2, -1);
  EXPECT_EQ(PicksOf(*season).size(), 2u);
  EXPECT_TRUE(Rounds(Board(*season, 80)).empty());
  EXPECT_NE(DraftOrder(*season).WhyUnsettled(), "");
}

TEST(DraftBoard, UsesTheWidthThatItHas) {
  const auto season = Season(12, 1);
  Fill(*season, 1);
  const auto countOfGrids = [&](std::size_t width) {
    const auto lines = Board(*season, width);
    return std::count_if(lines.begin(), lines.end(),
                         [](const auto& line) { return line.starts_with("1 →"); });
  };
  EXPECT_EQ(countOfGrids(80), 3);
  EXPECT_EQ(countOfGrids(171), 1);
  EXPECT_EQ(countOfGrids(170), 2);
  EXPECT_NE(Board(*season, 400)[3].find("QB 山田 Tarō-1"), std::string::npos);
}

TEST(DraftBoard, MarksWhatIsDueNotSavedAndMadeByAnother) {
  const auto season = Season(3, 2);
  Fill(*season, 1);
  Fill(*season, 3);
  const Picks stored = PicksOf(*season);
  Fill(*season, 4);
  season->Drafts()->Item(3)->Manager(season->Managers()->Item(1));
  Picks picks = PicksOf(*season);
  const auto lines = DraftBoard(*season, picks, stored).Lines(80);
  const std::string all = [&] {
    std::string text;
    for (const std::string& line : lines)
      text += line + "\n";
    return text;
  }();
  EXPECT_NE(all.find(">2 on the clock"), std::string::npos) << all;
  EXPECT_NE(all.find("> Pick 2, round 1: Åsa Ковленко-2 is on the clock."), std::string::npos) << all;
  EXPECT_NE(all.find("* Not saved: picks 3-4."), std::string::npos) << all;
  EXPECT_NE(all.find("~ Made by another than whose turn it was: 3 by Ковленко-1."), std::string::npos) << all;
}

TEST(DraftBoard, IsShownBeforeTheOrderIsSettled) {
  const auto season = Season(3, 2);
  season->Managers()->Item(2)->Rank(0);
  std::string all;
  for (const std::string& line : Board(*season, 60))
    all += line + " ";
  EXPECT_NE(all.find("not ranked: Åsa Ковленко-2."), std::string::npos) << all;
  EXPECT_EQ(all.find("on the clock"), std::string::npos) << all;

  season->Managers()->Remove(2);
  EXPECT_NE(Board(*season, 80)[2].find("(nobody)"), std::string::npos);
  EXPECT_EQ(Board(*Season(0, 5), 80).back(),
            "The draft of the season 2030 has no picks: it is set to 0 managers and 5 rounds.");
}

}  // namespace
}  // namespace cli
