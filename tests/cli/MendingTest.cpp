// Leagues whose rows contradict each other: they are shown, every command that they do not concern runs, and
// they can be mended.

#include <functional>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Pickables.h"
#include "HLLeague/Players.h"
#include "HLLeague/Prizes.h"
#include "HLLeague/Seasons.h"
#include "cli/commands/DraftPicking.h"
#include "storage/LeagueCsv.h"
#include "storage/LeagueFile.h"
#include "tests/cli/DraftTest.h"

namespace cli::test {

using namespace HLLeague;

namespace {

using HLDataSrvc::EditRows;

class MendingTest : public DraftTest {
 protected:
  MendingTest() {
    Edit("select * from [season info] where id = 5", {{"is draft locked", "0"}, {"is season locked", "0"}});
  }

  /// A league as this program makes it, which enforces no relationship with teams and types of prize.
  void UseSampleLeague() {
    m_context.reset();
    const std::string path = m_folder.File("Halcyra - Live.mdb");
    HLDataSrvc::CreateLeagueFile(path, {.overwrite = true, .fill = [](jet::Database& database) {
                                          HLDataSrvc::LeagueCsv::FillFromFolder(database,
                                                                                HALCYRA_SAMPLE_LEAGUE);
                                        }});
    Reopen();
  }
  void Edit(const std::string& select,
            const std::vector<std::pair<std::string, std::optional<std::string>>>& values) {
    EXPECT_EQ(EditRows(League().Service(), select, values), 1u) << select;
  }
  void EditPick(int number, const std::string& column, const std::string& value) {
    Edit("select * from [draft info] where [season id] = 5 and [draft no] = " + std::to_string(number),
         {{column, value}});
  }
  static std::string Refusal(const std::function<void()>& command) {
    try {
      command();
    } catch (const Failure& failure) {
      return std::string(failure.what()) + "\n" + failure.Hint();
    }
    return {};
  }
  std::string Whys() {
    std::string text;
    for (const MisfitPick& misfit : Draft().Misfits())
      text += misfit.why + "\n";
    return text;
  }
  void Pick(const std::string& who, std::optional<std::int32_t> number) {
    PickableWords words;
    words.retired = true;
    DraftPick(*m_context, {.who = {who}, .words = words, .pick = number, .manager = "13"});
  }
};

TEST_F(MendingTest, PicksBehindARowThatDoesNotFitAreShownAndKept) {
  const auto rows = Rows();
  const HLLeague::Pick ninth = Draft().Current()[8];
  const std::string outside = (ninth.type == HLIData::PickType::Team ? "T" : "P") + std::to_string(ninth.id);
  EditPick(4, "manager id", "1");  // who does not take part
  EditPick(9, "draft no", "99");
  EditPick(11, "player id", "5");  // who is picked at 1
  Reopen();
  const Picks& picks = Draft().Current();
  EXPECT_EQ(Whys(),
            "Pick 4 is of manager 1, who does not take part.\nPick 11 is the same as pick 1.\n"
            "Pick 99 lies outside the draft of 12 picks.\n");
  EXPECT_EQ(picks[11].id, Draft().Stored()[11].id);
  EXPECT_FALSE(picks[11].IsEmpty()) << "though the service does not show it";
  EXPECT_EQ(AllSeasons(League()).size(), 12u);

  const std::string mend = "has to be mended first";
  EXPECT_NE(Refusal([&] { Pick("P200", {}); }).find(mend), std::string::npos);
  EXPECT_NE(Refusal([&] { DraftUndo(*m_context, {}); }).find(mend), std::string::npos);
  EXPECT_NE(Refusal([&] { Pick("P" + std::to_string(picks[9].id), 4); }).find("pick 10"), std::string::npos)
      << "whoever stands at a pick behind is taken";
  EXPECT_NE(Refusal([&] { Pick(outside, 4); }).find("'draft clear 99'"), std::string::npos);
  EXPECT_EQ(PicksMadeIn(Draft(), Draft().Season()), 11) << "as the rows have them";

  // Each is mended by its number, and no other row changes.
  Pick("P200", 4);
  DraftClear(*m_context, {99}, true);
  DraftUndo(*m_context, 11);
  EXPECT_EQ(Whys(), "");
  auto expected = rows;
  expected[{5, 4}] = "m13 p200 t-";
  expected.erase({5, 9});
  expected.erase({5, 11});
  EXPECT_EQ(Rows(), expected);
  EXPECT_EQ(PicksOf(*CurrentSeason(League())), Draft().Current()) << "the service shows it whole";
  Pick("P201", {});
  expected[{5, 9}] = "m13 p201 t-";
  EXPECT_EQ(Rows(), expected);

  EditPick(12, "draft no", "77");
  Reopen();
  DraftClear(*m_context, {}, true);
  for (const auto& [key, row] : Rows())
    EXPECT_NE(key.first, 5) << "all are cleared, those outside too";
}

TEST_F(MendingTest, ABrokenPlayerStopsNoCommandThatDoesNotConcernHim) {
  UseSampleLeague();
  const auto players = AllPlayers(League()).size();
  const auto broken = PlayerByID(League(), 200);
  const PlayerValues before = ValuesOf(*broken);
  Edit("select * from [player info] where id = 200", {{"team id", "99"}});
  Reopen();
  EXPECT_EQ(AllPlayers(League()).size(), players);
  const auto found = FindPlayer(League(), "P200");
  EXPECT_EQ(found->LastName(), before.lastName);
  EXPECT_EQ(found->Team(), nullptr);
  EXPECT_EQ(FindPlayer(League(), before.firstName + " " + before.lastName)->ID(), 200);
  EXPECT_NE(Refusal([&] {
              RequireSound(dynamic_cast<const HLIData::IPickable&>(*found));
            }).find("Player 200 in [player info] has the team 99"),
            std::string::npos);

  PlayerValues values = ValuesOf(*found);
  EXPECT_NE(Refusal([&] { SavePlayer(League(), values, 200); }).find("Player team is required."),
            std::string::npos);
  values.teamID = before.teamID;
  SavePlayer(League(), values, 200);
  EXPECT_EQ(ValuesOf(*PlayerByID(League(), 200)), before);
}

TEST_F(MendingTest, APrizeWithoutItsTypeStopsNoCommandThatDoesNotConcernIt) {
  UseSampleLeague();
  const auto types = [&] {
    std::string text;
    for (const auto& prize : AllPrizes(League()))
      text += prize->PrizeType() ? std::to_string(prize->PrizeType()->ID()) : "-";
    return text;
  };
  const std::string before = types();
  Edit("select * from [prize info] where id = 3", {{"type id", "99"}});
  Edit("select * from [prize info] where id = 5", {{"type id", std::nullopt}});
  Reopen();
  std::string broken = before;
  broken[2] = broken[4] = '-';
  EXPECT_EQ(types(), broken);
  const auto added = SavePrize(League(), "Added", 1, 0);
  RequireLoaded(League(), *FindPrizeTmpl(League(), "2"));
  EXPECT_NE(Refusal([&] { RequireLoaded(League(), *FindPrizeTmpl(League(), "7")); }).find("Prize 3"),
            std::string::npos)
      << "a season that puts it up could not be loaded";
  EXPECT_NE(Refusal([&] { SavePrize(League(), "Fifth", 0, 5); }).find("is required"), std::string::npos);
  SavePrize(League(), "Fifth", before[4] - '0', 5);  // though the third is broken still
  SavePrize(League(), "Third", before[2] - '0', 3);
  EXPECT_EQ(types(), before + "1");
  Reopen();
  EXPECT_EQ(types(), before + "1");
  EXPECT_EQ(FindPrizeTmpl(League(), "Third")->ID(), 3);
  EXPECT_EQ(FindPrizeTmpl(League(), "Added")->ID(), added->ID());
}

TEST_F(MendingTest, ASeasonThatCannotBeLoadedIsNamedAndNotMadeAgain) {
  UseSampleLeague();
  for (const int year : {1999, 2000})
    League().Service().CurrentSeasonYear(year);
  Edit("select * from [season info] where [season year] = 1999", {{"id", "-2"}});
  Reopen();
  std::string missing;
  EXPECT_EQ(AllSeasons(League(), &missing).size(), 1u);
  EXPECT_NE(missing.find("Season -2"), std::string::npos);
  EXPECT_NE(Refusal([&] { SeasonsOfYear(League(), 1999); }).find("could not be loaded"), std::string::npos);
  EXPECT_TRUE(SeasonsOfYear(League(), 1998).empty());
}

TEST_F(MendingTest, OptionsThatContradictAnIdAreRefused) {
  const auto player = PlayerByID(League(), 200);
  const auto find = [&](const PickableWords& words) {
    return Refusal([&] { FindPickable(League(), words, [](const auto&) { return std::string(); }); });
  };
  PickableWords words;
  words.who = "P200";
  words.team = player->Team()->Abbr();
  words.retired = true;
  EXPECT_EQ(find(words), "");
  words.team = words.team == "ASH" ? "BRA" : "ASH";
  EXPECT_NE(find(words).find("contradicts"), std::string::npos);
  Edit("select * from [player info] where id = 200", {{"is retired", "-1"}});
  Reopen();
  words.team.clear();
  EXPECT_EQ(find(words), "");
  words.retired = false;
  EXPECT_NE(find(words).find("is retired"), std::string::npos);
}

}  // namespace
}  // namespace cli::test
