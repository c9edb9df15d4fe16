#include <algorithm>

#include "jet/format/NameOrder.h"
#include "jet/format/SortKey.h"
#include "jet/format/TextCodec.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

std::string KeyOf(std::string_view text) {
  Bytes key;
  return AppendTextKey(text, key) ? ToHex(key) : "none";
}

TEST(SortKey, OfTextsInRealIndexes) {
  EXPECT_EQ(KeyOf("Table2Table1"), "6d4a4c5e513a6d4a4c5e51380100");
  EXPECT_EQ(KeyOf("-1"),
            "3801010101800706"
            "8200");
  EXPECT_EQ(KeyOf("\x03"
                  "DirData"),
            "4f59694f4a6d4a01010101"
            "8007060500");
  EXPECT_EQ(KeyOf("O'Brien"),
            "644c69595162"
            "01010101"
            "800b068000");
  EXPECT_EQ(KeyOf("Jean-Luc"),
            "5b514a625e6f4d"
            "01010101"
            "8017068200");
  EXPECT_EQ(KeyOf("ääkkösiä"),
            "4a4a5c5c646b594a"
            "01"
            "1313020213020213"
            "00");
  EXPECT_EQ(KeyOf(""), "0100");
  EXPECT_EQ(KeyOf("MSysDb"), "606b766b4f4c0100");
}

TEST(SortKey, CountsTheFirst255CharactersWithoutBlanksAtTheEnd) {
  EXPECT_EQ(KeyOf("abc  "), KeyOf("ABC"));
  EXPECT_EQ(KeyOf(std::string(255, 'a') + "b"), KeyOf(std::string(255, 'A')));
  std::string accents;
  for (int i = 0; i < 255; ++i)
    accents += "é";
  EXPECT_EQ(KeyOf(accents + "b"), KeyOf(accents));
  EXPECT_EQ(KeyOf(std::string(250, 'a') + "     b"), KeyOf(std::string(250, 'a')));
}

TEST(SortKey, OfCharactersOutsideTheTable_IsNone) {
  for (const char* text : {"ab\u4E2D", "\xF0\x9F\x9F\x88", "a\xFF", "\u0301"}) {
    Bytes key = FromHex("7f");
    EXPECT_FALSE(AppendTextKey(text, key)) << text;
    EXPECT_EQ(ToHex(key), "7f");
  }
}

TEST(SortKey, CompareText_OrdersAsAReaderExpects) {
  const std::vector<std::string> ordered = {"",         " a",       "#",        "1",
                                            "a",        "á",        "æ",        "b",
                                            "co-op",    "coop2",    "Jean Luc", "jeanluc",
                                            "Jean-Luc", "jeanlucx", "obrien",   "O'Brien",
                                            "z",        "\u4E2D",   "\u4E2E",   "\xF0\x9F\x9F\x88"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      EXPECT_EQ(CompareText(ordered[i], ordered[j]), i <=> j) << ordered[i] << " with " << ordered[j];
    }
  }
  EXPECT_EQ(CompareText("ÉCOLE  ", "école"), std::strong_ordering::equal);
  EXPECT_EQ(CompareText("e\u0301", "e"), std::strong_ordering::greater);
}

TEST(SortKey, CompareText_AgreesWithTheKeys) {
  Random random;
  const std::u16string alphabet = u"aAbBáÁäæÆßzZ 09'-.,^~\u0003\u0110\u017F\u0301\u2019\u202A\u20AC";
  const auto randomText = [&] {
    std::u16string units;
    for (std::uint32_t left = random.Below(6); left > 0; --left) {
      units.push_back(alphabet[random.Below(static_cast<std::uint32_t>(alphabet.size()))]);
    }
    return Utf16ToUtf8(units);
  };
  int compared = 0;
  for (int round = 0; round < 30000; ++round) {
    const std::string a = randomText();
    const std::string b = randomText();
    Bytes keyA;
    Bytes keyB;
    if (!AppendTextKey(a, keyA) || !AppendTextKey(b, keyB)) continue;
    ++compared;
    const auto wanted =
        std::lexicographical_compare_three_way(keyA.begin(), keyA.end(), keyB.begin(), keyB.end());
    ASSERT_EQ(CompareText(a, b), wanted) << a << " with " << b;
  }
  EXPECT_GT(compared, 10000);
}

TEST(NameOrder, IgnoresCaseAndNothingElse) {
  EXPECT_TRUE(SameName("Player ID", "player id"));
  EXPECT_TRUE(SameName("ÄRGER ŽÓŁĆ ΩΜΕΓΑ ЖУК Ÿ", "ärger žółć ωμεγα жук ÿ"));
  EXPECT_FALSE(SameName("id", "id "));
  EXPECT_FALSE(SameName("co-op", "coop"));
  EXPECT_TRUE(CompareNames(".rB", "id") < 0);
  EXPECT_TRUE(CompareNames("a_b", "aab") < 0);
  EXPECT_TRUE(CompareNames("id", "ID2") < 0);
}

}  // namespace
}  // namespace jet::format::test
