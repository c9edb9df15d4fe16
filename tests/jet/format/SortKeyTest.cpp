#include <algorithm>
#include <sstream>
#include <utility>

#include "jet/format/NameOrder.h"
#include "jet/format/SortKey.h"
#include "jet/format/TextCodec.h"
#include "tests/jet/format/FormatTestSupport.h"
#include "tests/support/TestFiles.h"

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

/// UTF-8 of units as keys take it, surrogates without a partner in three bytes.
std::string KeyTextOf(std::u16string_view units) {
  std::string text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const bool isPair = units[i] >= 0xD800 && units[i] < 0xDC00 && i + 1 < units.size() &&
                        units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000;
    if (isPair) {
      text += Utf16ToUtf8(units.substr(i++, 2));
    } else if (units[i] >= 0xD800 && units[i] < 0xE000) {
      text += '\xED';
      text += static_cast<char>(0x80 | (units[i] >> 6 & 0x3F));
      text += static_cast<char>(0x80 | (units[i] & 0x3F));
    } else {
      text += Utf16ToUtf8(units.substr(i, 1));
    }
  }
  return text;
}

TEST(SortKey, AgreesWithAnIndependentWriter) {
  std::istringstream lines(jet::test::ReadWholeText(std::string(HALCYRA_TEST_DATA) + "/sort-key-cases.tsv"));
  std::size_t cases = 0;
  for (std::string line; std::getline(lines, line);) {
    const std::size_t tab = line.find('\t');
    if (line.starts_with('#') || tab == std::string::npos) continue;
    std::u16string units;
    for (std::size_t at = 0; at < tab; at += 4)
      units.push_back(static_cast<char16_t>(std::stoul(line.substr(at, 4), nullptr, 16)));
    Bytes key;
    ASSERT_TRUE(AppendTextKey(KeyTextOf(units), key)) << line;
    EXPECT_EQ(key, FromHex(line.substr(tab + 1))) << line;
    ++cases;
  }
  EXPECT_EQ(cases, 600U);
}

TEST(SortKey, OfTextThatIsNotUtf8_IsNone) {
  for (const char* text : {"a\xFF", "\xED\xA0", "\xC3"}) {
    Bytes key = FromHex("7f");
    EXPECT_FALSE(AppendTextKey(text, key)) << text;
    EXPECT_EQ(ToHex(key), "7f");
  }
}

TEST(SortKey, OfAPairCutInTwo_HasItsHighSurrogate) {
  const std::string text = std::string(254, 'a') + "\U0001F3C8";
  EXPECT_EQ(KeyOf(text), KeyOf(std::string(254, 'a') + "\xED\xA0\xBC"));
  EXPECT_NE(KeyOf(text), KeyOf(std::string(254, 'a')));
}

TEST(SortKey, CompareText_OrdersAsAReaderExpects) {
  const std::vector<std::string> ordered = {"",         " a",
                                            "#",        "1",
                                            "a",        "á",
                                            "æ",        "b",
                                            "co-op",    "coop2",
                                            "Jean Luc", "jeanluc",
                                            "Jean-Luc", "jeanlucx",
                                            "obrien",   "O'Brien",
                                            "z",        "иванов",
                                            "Олейник",  "\u4E00",
                                            "\u4E8C",   "\xF0\x9F\x9F\x88"};
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    for (std::size_t j = 0; j < ordered.size(); ++j) {
      EXPECT_EQ(CompareText(ordered[i], ordered[j]), i <=> j) << ordered[i] << " with " << ordered[j];
    }
  }
  EXPECT_EQ(CompareText("ÉCOLE  ", "école"), std::strong_ordering::equal);
  EXPECT_EQ(CompareText("e\u0301", "e"), std::strong_ordering::greater);
}

TEST(SortKey, CompareText_IgnoresCaseInEveryScript) {
  for (const auto& [a, b] : {std::pair("иванов", "Иванов"), std::pair("Nguyễn Ánh", "NGUYỄN ÁNH"),
                             std::pair("łódź", "ŁÓDŹ"), std::pair("ωμέγα", "ΩΜΈΓΑ")})
    EXPECT_EQ(CompareText(a, b), std::strong_ordering::equal) << a;
  EXPECT_EQ(CompareText("김민준", "이서준"), std::strong_ordering::less);
  EXPECT_EQ(CompareText("Nguyen", "Nguyễn"), std::strong_ordering::less);
  EXPECT_EQ(CompareText("Nguyễn A", "Nguyen B"), std::strong_ordering::less);
}

TEST(SortKey, CompareText_AgreesWithTheKeys) {
  Random random;
  const std::u16string alphabet = u"aAbBáÁäæÆßzZ 09'-.,^~\u0003\u0110\u017F\u0301\u2019\u202A\u20ACかカがー";
  // Some characters that often meet, and any others.
  const auto randomText = [&] {
    std::u16string units;
    for (std::uint32_t left = random.Below(6); left > 0; --left) {
      if (random.Below(3) != 0) {
        units.push_back(alphabet[random.Below(static_cast<std::uint32_t>(alphabet.size()))]);
      } else {
        units.push_back(static_cast<char16_t>(random.Below(0x10000)));
      }
    }
    return KeyTextOf(units);
  };
  for (int round = 0; round < 30000; ++round) {
    const std::string a = randomText();
    const std::string b = randomText();
    Bytes keyA;
    Bytes keyB;
    ASSERT_TRUE(AppendTextKey(a, keyA) && AppendTextKey(b, keyB));
    const auto wanted =
        std::lexicographical_compare_three_way(keyA.begin(), keyA.end(), keyB.begin(), keyB.end());
    ASSERT_EQ(CompareText(a, b), wanted) << a << " with " << b;
  }
}

TEST(NameOrder, IgnoresCaseAndNothingElse) {
  EXPECT_TRUE(SameName("Player ID", "player id"));
  EXPECT_TRUE(SameName("ÄRGER ŽÓŁĆ ΩΜΕΓΑ ЖУК Ÿ", "ärger žółć ωμεγα жук ÿ"));
  EXPECT_TRUE(SameName("ȘTEFAN NGUYỄN ԱՐԱՄ ͲẞⰀ", "ștefan nguyễn արամ ͳßⰰ"));
  EXPECT_FALSE(SameName("id", "id "));
  EXPECT_FALSE(SameName("co-op", "coop"));
  EXPECT_TRUE(CompareNames(".rB", "id") < 0);
  EXPECT_TRUE(CompareNames("a_b", "aab") < 0);
  EXPECT_TRUE(CompareNames("id", "ID2") < 0);
}

}  // namespace
}  // namespace jet::format::test
