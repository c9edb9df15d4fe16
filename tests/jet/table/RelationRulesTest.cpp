// Relationships that need more than a look at an index: of a table to itself, with a shared foreign key, with
// keys of unknown form.
#include <map>

#include <gtest/gtest.h>

#include "jet/format/Bytes.h"
#include "tests/jet/table/TableTestSupport.h"

namespace jet::test {
namespace {

class SelfRelation : public testing::Test {
 protected:
  static constexpr bool kCascades = true;

  /// A table "staff" of (id, parent, name) whose parent refers to its id.
  void Make(bool cascades, const std::map<int, Value>& parents) {
    database.Schema().CreateTable(Simple("staff"));
    database.Schema().CreateRelation(
        {"boss", "staff", {"parent"}, "staff", {"id"}, true, cascades, cascades});
    // Rows first, then whom they refer to, who may come later.
    for (const auto& [id, parent] : parents)
      database.Add("staff", {id, Value(), "x"});
    for (const auto& [id, parent] : parents)
      Change(id, {{1, parent}});
  }
  RowId Find(int id) {
    const Index& index = database.TableOf("staff").IndexAt(0);
    const Value key(id);
    return index.Find(*index.KeyPrefix({&key, 1})).value_or(RowId{});
  }
  int Change(int id, const std::vector<ColumnValue>& changes) {
    return ErrorOf([&] {
      ChangeUnit unit(database.store->Pages());
      database.TableOf("staff").Update(Find(id), changes);
      unit.Commit();
    });
  }
  int Delete(int id) {
    return ErrorOf([&] {
      ChangeUnit unit(database.store->Pages());
      database.TableOf("staff").Delete(Find(id));
      unit.Commit();
    });
  }
  std::map<int, Value> Parents() {
    std::map<int, Value> parents;
    Table& table = database.TableOf("staff");
    for (TableScan scan(table); scan.Next();)
      parents[*table.Read(scan.Row(), 0).As<std::int32_t>()] = table.Read(scan.Row(), 1);
    EXPECT_EQ(database.Check(), "");
    return parents;
  }

  TestDatabase database;
};

TEST_F(SelfRelation, ARowThatRefersToItself_KeepsAParentWhateverChanges) {
  const std::map<int, Value> rows{{1, 1}, {5, Value()}};
  Make(!kCascades, rows);
  EXPECT_EQ(Change(1, {{0, 2}}), 3200) << "it would refer to the key that it had";
  EXPECT_EQ(Change(5, {{0, 6}, {1, 5}}), 3200) << "its old key goes";
  EXPECT_EQ(Change(5, {{1, 7}}), 3201);
  EXPECT_EQ(Parents(), rows);
  EXPECT_EQ(Change(1, {{0, 2}, {1, 2}}), 0);
  EXPECT_EQ(Change(5, {{1, 5}}), 0);
  database.Add("staff", {9, 9, "refers to itself from the start"});
  EXPECT_EQ(Parents(), (std::map<int, Value>{{2, 2}, {5, 5}, {9, 9}}));
  EXPECT_EQ(Delete(2), 0);
  EXPECT_EQ(Parents(), (std::map<int, Value>{{5, 5}, {9, 9}}));
}

TEST_F(SelfRelation, CascadesReachARowThatRefersToItself_AndRowsThatReferToEachOther) {
  Make(kCascades, {{1, 1}, {2, 1}, {3, 2}, {10, 12}, {11, 10}, {12, 11}, {20, Value()}});
  EXPECT_EQ(Change(1, {{0, 7}}), 0);
  EXPECT_EQ(Change(11, {{0, 13}}), 0);
  EXPECT_EQ(Parents(),
            (std::map<int, Value>{{7, 7}, {2, 7}, {3, 2}, {10, 12}, {13, 10}, {12, 13}, {20, Value()}}));
  EXPECT_EQ(Delete(10), 0);
  EXPECT_EQ(Parents(), (std::map<int, Value>{{7, 7}, {2, 7}, {3, 2}, {20, Value()}}));
  EXPECT_EQ(Delete(7), 0);
  EXPECT_EQ(Parents(), (std::map<int, Value>{{20, Value()}}));
}

TEST(SharedForeignKey, ACascadeDoesNotLeaveAnOrphanOfTheOtherParent) {
  TestDatabase database;
  for (const char* name : {"a", "b", "child"})
    database.Schema().CreateTable(Simple(name));
  database.Schema().CreateRelation({"to a", "child", {"parent"}, "a", {"id"}, true, true, false});
  database.Schema().CreateRelation({"to b", "child", {"parent"}, "b", {"id"}, true, false, false});
  const RowId parent = database.Add("a", {1, Value(), "x"});
  database.Add("b", {1, Value(), "x"});
  database.Add("child", {1, 1, "x"});
  const ColumnValue key{0, 2};
  EXPECT_EQ(ErrorOf([&] {
              ChangeUnit unit(database.store->Pages());
              database.TableOf("a").Update(parent, {&key, 1});
              unit.Commit();
            }),
            3201);
  EXPECT_EQ(database.Check(), "");
}

TEST(RelationWithAnotherSortOrder, RowsThatAreReferredToStay) {
  TestDatabase database;
  for (const char* name : {"parents", "children"})
    database.Schema().CreateTable({name, {Column("key", ColumnType::Text, 20)}, {}});
  database.Schema().CreateIndex("parents", {"PrimaryKey", {{"key"}}, true, false, false, false, false});
  database.Schema().CreateRelation({"r", "children", {"key"}, "parents", {"key"}, true, false, false});
  const RowId referred = database.Add("parents", {"Abc"});
  const RowId alone = database.Add("parents", {"Xyz"});
  database.Add("children", {"abc"});
  // Of this order we do not know the keys.
  constexpr std::uint16_t kSwedish = 0x041D;
  for (const char* name : {"parents", "children"}) {
    const format::TableDefinition& definition = database.TableOf(name).Definition();
    ChangeUnit unit(database.store->Pages());
    const MutablePage page = database.store->Pages().Change(definition.page);
    format::StoreU16(page.Data() + 0x3F + 12 * definition.indexes.size() + 11, kSwedish);
    unit.Commit();
  }
  database.store->Reload();
  const auto remove = [&](RowId row) {
    return ErrorOf([&] {
      ChangeUnit unit(database.store->Pages());
      database.TableOf("parents").Delete(row);
      unit.Commit();
    });
  };
  EXPECT_EQ(remove(referred), 3200);
  EXPECT_EQ(remove(alone), 0);
}

}  // namespace
}  // namespace jet::test
