#include <algorithm>
#include <random>

#include "HLIData/IPickable.h"
#include "tests/service/ServiceTest.h"

namespace HLDataSrvc {
namespace {

using namespace HLIData;
using Statements = std::vector<std::string>;

constexpr char kOpen[] = "Database.OpenRecordset ";

class SearchTest : public test::ServiceTest {
 protected:
  SearchTest() {
    Put("league.mdb");
    EXPECT_TRUE(Initialize());
  }

  std::shared_ptr<KeyedCollection<IPickable>> Search(SearchType type, const std::string& text,
                                                     bool curSeasonOnly = false, bool skipRetired = false) {
    m_engine->calls.clear();
    return m_service->Search(type, text, curSeasonOnly, skipRetired);
  }

  /// The statements of the last search, without those that look up single records.
  Statements Made() const {
    Statements made;
    for (const std::string& call : m_engine->calls) {
      if (call.starts_with(kOpen) && call.find(" like ") != std::string::npos) {
        made.push_back(call.substr(sizeof kOpen - 1));
      }
    }
    return made;
  }
};

TEST_F(SearchTest, AsksForOneWordInBothNamesAndForTheWholeTextInTeams) {
  Search(SearchType::PlayersAndTeams, "smith", true, true);
  EXPECT_EQ(Made(),
            (Statements{"select [id] from [player info] where ((([last name] like 'smith*') or ([first "
                        "name] like 'smith*'))) and ([is retired] = false) order by [first name], [last "
                        "name], [id]",
                        "select [id] from [team info] where [name] like 'smith*' or [nickname] like "
                        "'smith*' or [abbr] like 'smith*' order by [name], [nickname], [abbr], [id]"}));
}

TEST_F(SearchTest, PairsEachWordWithTheNextInBothOrders) {
  const auto pair = [](const std::string& last, const std::string& first) {
    return "(([last name] like '" + last + "*') and ([first name] like '" + first + "*'))";
  };
  const auto statement = [](const std::string& condition) {
    return "select [id] from [player info] where (" + condition +
           ") order by [first name], [last name], [id]";
  };
  for (const char* text : {"joe smith", "joe,smith", "joe;smith"}) {
    Search(SearchType::PlayersAndTeams, text);
    EXPECT_EQ(Made().at(0), statement(pair("joe", "smith") + " or " + pair("smith", "joe") + " or " +
                                      pair("smith", "joe") + " or " + pair("joe", "smith")))
        << text;
  }
  Search(SearchType::PlayersAndTeams, "joe, smith");
  EXPECT_EQ(Made().at(0),
            statement(pair("joe", "smith") + " or " + pair("smith", "joe") + " or " + pair("smith", "") +
                      " or " + pair("", "smith") + " or " + pair("", "joe") + " or " + pair("joe", "")));
}

TEST_F(SearchTest, AsksForTheOtherKindsAsTheyAreAndForThoseOfTheSeason) {
  Search(SearchType::Managers, "a b");
  EXPECT_EQ(Made(),
            (Statements{"select [id] from [manager info] where [last name] like 'a b*' or [first name] "
                        "like 'a b*' order by [first name], [last name], [id]"}));
  Search(SearchType::Managers, "a", true);
  EXPECT_EQ(Made(),
            (Statements{"select m.[id] from [playing info] p inner join [manager info] m on p.[manager "
                        "id] = m.[id] where (p.[season id] = 11) and (m.[last name] like 'a*' or "
                        "m.[first name] like 'a*') order by m.[first name], m.[last name], m.[id]"}));
  Search(SearchType::Prizes, "cup");
  EXPECT_EQ(Made(),
            (Statements{"select [id] from [prize info] where [desc] like '*cup*' order by [desc], [id]"}));
  Search(SearchType::Prizes, "cup", true);
  EXPECT_EQ(Made(),
            (Statements{"select p.[id] from [money distribution info] m inner join [prize info] p on "
                        "m.[prize id] = p.[id] where (m.[season id] = 11) and (p.[desc] like '*cup*') "
                        "order by p.[desc], p.[id]"}));
  Search(SearchType::Positions, "back");
  EXPECT_EQ(
      Made(),
      (Statements{"select [id] from [position info] where [desc] like '*back*' order by [desc], [id]"}));
}

TEST_F(SearchTest, AnswersTheRecordsThatEverybodyShares) {
  const auto positions = Search(SearchType::Positions, "");
  ASSERT_EQ(positions->Count(), m_service->GetPlayerPositions()->Count());
  for (const auto& position : *positions) {
    EXPECT_EQ(std::dynamic_pointer_cast<IPositionInfo>(position),
              m_service->GetPlayerPositions()->Item("K" + std::to_string(position->PickID())));
  }
  const auto again = Search(SearchType::PlayersAndTeams, "Br");
  ASSERT_GT(again->Count(), 3);
  const auto before = again->Items();
  EXPECT_EQ(Search(SearchType::PlayersAndTeams, "Br")->Items(), before);
  EXPECT_EQ(again->KeyAt(1), "");
  EXPECT_EQ(m_engine->Count("Database.OpenRecordset"), 2u) << "all players are known by now";
}

TEST_F(SearchTest, TypeWithoutANameAnswersNoneAndRunsNoQuery) {
  for (const int type : {0, 5, -1}) {
    EXPECT_EQ(Search(SearchType{type}, "a"), nullptr);
    EXPECT_TRUE(m_engine->calls.empty());
  }
  EXPECT_TRUE(m_host->messages.empty());
}

TEST_F(SearchTest, ApostropheBreaksTheStatementAndIsShownOnce) {
  const std::vector<std::pair<SearchType, std::string>> kinds = {
      {SearchType::PlayersAndTeams, "Error in searching players/teams.\r\n"},
      {SearchType::Managers, "Error in searching managers.\r\n"},
      {SearchType::Prizes, "Error in searching prizes.\r\n"},
      {SearchType::Positions, "Error in searching positions.\r\n"}};
  for (const auto& [type, sentence] : kinds) {
    m_host->messages.clear();
    EXPECT_EQ(Search(type, "O'Neil"), nullptr);
    ASSERT_EQ(m_host->messages.size(), 1u);
    EXPECT_TRUE(m_host->messages[0].text.starts_with(sentence)) << m_host->messages[0].text;
    EXPECT_GT(m_host->messages[0].text.size(), sentence.size());
  }
}

TEST_F(SearchTest, WhateverIsTypedEndsInAResultOrOneMessage) {
  const std::string blanks(1000, ' ');
  const std::vector<std::string> texts = {"\"",
                                          "[",
                                          "]",
                                          "[a",
                                          "[!a]",
                                          "*",
                                          "?",
                                          "#",
                                          "%",
                                          "'; delete from x",
                                          "--",
                                          "\xff\xfe",
                                          "\xc3",
                                          std::string(10000, 'a'),
                                          blanks,
                                          std::string("a\0b", 3),
                                          "' or 'a' = 'a",
                                          "a,b;c d"};
  for (const auto& text : texts) {
    for (const auto type : {SearchType::PlayersAndTeams, SearchType::Managers, SearchType::Prizes}) {
      m_host->messages.clear();
      const auto found = Search(type, text);
      EXPECT_EQ(m_host->messages.size(), found ? 0u : 1u) << text.substr(0, 40);
    }
  }
}

// Every search finds what a scan of all names finds.
TEST_F(SearchTest, FindsWhatAScanFinds) {
  struct Player {
    std::int32_t id;
    std::string first, last;
    bool isRetired;
  };
  const auto database = [&] {
    m_service->CloseDatabase();
    return jet::DBEngine().OpenDatabase(PathOf("Halcyra - Live.mdb"), true, false,
                                        HLServiceUtils::GetConnectString());
  }();
  std::vector<Player> players;
  const auto rows = database->OpenRecordset("select * from [player info]");
  const auto text = [&](const char* column) { return rows->Fields(column).Value().ToText(); };
  for (; !rows->Eof(); rows->MoveNext()) {
    players.push_back(
        {std::stoi(text("id")), text("first name"), text("last name"), text("is retired") == "True"});
  }
  database->Close();
  ASSERT_EQ(players.size(), 2500u);
  ASSERT_TRUE(m_service->OpenDatabase(false, m_message)) << m_message;

  const auto isAscii = [](const std::string& name) {
    return std::all_of(name.begin(), name.end(), [](unsigned char c) { return c < 0x80; });
  };
  const auto begins = [&](const std::string& name, const std::string& word) {
    if (name.empty() || name.size() < word.size()) return false;
    return std::equal(word.begin(), word.end(), name.begin(),
                      [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
  };
  std::mt19937 random(17);
  const auto someWord = [&]() -> std::string {
    for (;;) {
      const Player& player = players[random() % players.size()];
      const std::string& name = random() % 2 == 0 ? player.first : player.last;
      std::string word = name.substr(0, 1 + random() % 4);
      if (isAscii(name) && !name.empty() && word.find_first_of("' ,;[]*?#") == std::string::npos) return word;
    }
  };
  std::size_t found = 0;
  for (int round = 0; round < 25; ++round) {
    std::vector<std::string> words(1 + random() % 3);
    for (std::string& word : words)
      word = someWord();
    const bool skipRetired = random() % 2 == 0;
    std::vector<std::int32_t> expected;
    for (const Player& player : players) {
      if (skipRetired && player.isRetired) continue;
      bool matches = words.size() == 1 && (begins(player.last, words[0]) || begins(player.first, words[0]));
      for (std::size_t i = 0; words.size() > 1 && i < words.size(); ++i) {
        const std::string& a = words[i];
        const std::string& b = words[(i + 1) % words.size()];
        matches = matches || (begins(player.last, a) && begins(player.first, b)) ||
                  (begins(player.last, b) && begins(player.first, a));
      }
      if (matches) expected.push_back(player.id);
    }
    std::string typed = words[0];
    for (std::size_t i = 1; i < words.size(); ++i)
      typed += " ,;"[random() % 3] + words[i];
    std::vector<std::int32_t> answered;
    const auto picks = Search(SearchType::PlayersAndTeams, typed, false, skipRetired);
    ASSERT_NE(picks, nullptr) << typed;
    for (const auto& pick : *picks) {
      if (pick->PickType() == PickType::Player) answered.push_back(pick->PickID());
    }
    found += answered.size();
    std::sort(answered.begin(), answered.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(answered, expected) << typed;
  }
  EXPECT_GT(found, 200u);
}

}  // namespace
}  // namespace HLDataSrvc
