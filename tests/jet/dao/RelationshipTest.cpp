#include <string>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "tests/jet/dao/Databases.h"

// The relationships of a file that an independent writer made.
namespace jet {
namespace {

using test::ExpectError;

class RelationshipTest : public test::LeagueTest {};

TEST_F(RelationshipTest, RowsThatAreReferredToStay) {
  for (const char* sql :
       {"select * from [position info] where id = 1", "select * from [manager info] where id = 7",
        "select * from [player info] where id = 68", "select * from [prize info] where id = 4"}) {
    const auto rows = Select(sql);
    const Value id = rows->Fields("id").Value();
    const std::string sentence = ExpectError(ErrorNumber::RowIsReferred, [&] { rows->Delete(); });
    EXPECT_NE(sentence.find(id.ToText()), std::string::npos) << sentence;
    EXPECT_EQ(rows->Fields("id").Value(), id);  // still the current row
    rows->Edit();
    rows->Fields("id").Value(99999);
    ExpectError(ErrorNumber::RowIsReferred, [&] { rows->Update(); });
    rows->Fields("id").Value(id);
    rows->Update();
  }
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(RelationshipTest, RowsThatNothingRefersToGo) {
  for (const char* sql :
       {"select * from [position info] where id = 12", "select * from [prize info] where id = 19",
        "select * from [prize info] where id = 23"}) {
    const auto rows = Select(sql);
    ASSERT_FALSE(rows->Eof()) << sql;
    rows->Delete();
    EXPECT_TRUE(Select(sql)->Eof()) << sql;
  }
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(RelationshipTest, OrphansAreRefused) {
  struct Orphan {
    const char* sql;
    const char* column;
  };
  for (const Orphan& orphan :
       {Orphan{"select * from [player info] where id = 68", "position id"},
        Orphan{"select * from [draft info] where [season id] = 11 and [draft no] = 5", "manager id"},
        Orphan{"select * from [draft info] where [season id] = 11 and [draft no] = 5", "player id"},
        Orphan{"select * from [playing info] where [season id] = 11 and [manager id] = 7", "season id"},
        Orphan{"select * from [winning info] where [season id] = 11", "prize id"}}) {
    const auto rows = Select(orphan.sql);
    rows->Edit();
    rows->Fields(orphan.column).Value(987654);
    const std::string sentence = ExpectError(ErrorNumber::NoReferredRow, [&] { rows->Update(); });
    EXPECT_NE(sentence.find("987654"), std::string::npos) << sentence;
  }
  const auto players = Select("select * from [player info] where id = 68");
  players->AddNew();
  players->Fields("id").Value(90000);
  players->Fields("position id").Value(987654);
  ExpectError(ErrorNumber::NoReferredRow, [&] { players->Update(); });
  players->Fields("position id").Value(Value());  // a Null refers to nothing
  players->Update();
  EXPECT_TRUE(database->Check().findings.empty());
}

TEST_F(RelationshipTest, RelationshipsWithoutIntegrityRefuseNothing) {
  const auto rows = Select("select * from [money distribution info]");
  rows->AddNew();
  rows->Fields("season id").Value(987654);
  rows->Fields("prize id").Value(4);
  rows->Update();
  EXPECT_EQ(One("select count(*) from [money distribution info] where [season id] = 987654"), Value(1));
}

}  // namespace
}  // namespace jet
