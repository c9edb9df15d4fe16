#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "tests/jet/dao/Databases.h"

// Columns of less common types as keys: found, ordered and kept in indexes.
namespace jet {
namespace {

using test::ExpectError;
using test::MakeColumn;

class KeyTypesTest : public test::LeagueTest {
 protected:
  KeyTypesTest() {
    IndexSpec primary{"PrimaryKey", {{"tag"}}, true, true, false, false, false};
    IndexSpec uid{"uid", {{"uid"}}, false, true, false, false, false};
    IndexSpec note{"note", {{"note"}}, false, true, false, false, false};
    IndexSpec amount{"amount", {{"amount", false}}, false, false, false, false, false};
    database->CreateTable({"keys",
                           {MakeColumn("tag", ColumnType::Binary, 20), MakeColumn("uid", ColumnType::Guid),
                            MakeColumn("note", ColumnType::Memo), MakeColumn("amount", ColumnType::Decimal)},
                           {primary, uid, note, amount}});
  }

  void Add(Bytes tag, const std::string& uid, const std::string& note, const std::string& amount) {
    const auto rows = Select("select * from keys");
    rows->AddNew();
    rows->Fields("tag").Value(std::move(tag));
    rows->Fields("uid").Value(uid);
    rows->Fields("note").Value(note);
    rows->Fields("amount").Value(amount);
    rows->Update();
  }
  std::string Notes(const std::string& rest) {
    std::string notes;
    for (const auto rows = Select("select note from keys " + rest); !rows->Eof(); rows->MoveNext())
      notes += rows->Fields(0).Value().ToText() + " ";
    return notes;
  }
};

constexpr const char* kLow = "{00000001-FFFF-FFFF-FFFF-FFFFFFFFFFFF}";
constexpr const char* kMiddle = "{00000100-0000-0000-0000-000000000000}";
constexpr const char* kHigh = "{01000000-0000-0000-0000-000000000000}";

TEST_F(KeyTypesTest, OrderAndAreFound) {
  Add({std::byte{2}}, kMiddle, "b", "-3");
  Add({std::byte{1}, std::byte{9}}, kLow, "c", "10");
  Add({std::byte{1}}, kHigh, "A", "2");
  EXPECT_EQ(Notes("order by tag"), "A c b ");
  EXPECT_EQ(Notes("order by tag desc"), "b c A ");
  EXPECT_EQ(Notes("order by uid"), "c b A ");
  EXPECT_EQ(Notes("order by note"), "A b c ");
  EXPECT_EQ(Notes("order by amount desc"), "c A b ");
  const std::string middle(kMiddle);
  EXPECT_EQ(Notes("where uid = {guid " + middle + "}"), "b ");
  EXPECT_EQ(Notes("where uid = {GUID" + std::string(kLow) + "}"), "c ") << "another GUID of the same shape";
  EXPECT_EQ(Notes("where '" + middle + "' = uid"), "b ");
  EXPECT_EQ(Notes("where uid > \"" + middle.substr(1, 36) + "\""), "A ");
  EXPECT_EQ(Notes("where note = 'a'"), "A ");
  ExpectError(ErrorNumber::TypeMismatch, [&] { Notes("where uid = 'no guid'"); });
  ExpectError(ErrorNumber::SyntaxErrorInExpression, [&] { Notes("where uid = {guid {123}}"); });

  ExpectError(ErrorNumber::DuplicateKey, [&] { Add({std::byte{7}}, kHigh, "d", "1"); });
  const auto rows = Select("select * from keys where note = 'c'");
  rows->Edit();
  rows->Fields("note").Value(std::string(300, 'n'));
  rows->Fields("amount").Value("-10");
  rows->Update();
  // The first 255 characters of a memo are its key.
  ExpectError(ErrorNumber::DuplicateKey, [&] {
    Add({std::byte{7}}, "{00000000-0000-0000-0000-000000000007}", std::string(255, 'n') + "other", "1");
  });
  EXPECT_TRUE(database->Check().findings.empty());
}

}  // namespace
}  // namespace jet
