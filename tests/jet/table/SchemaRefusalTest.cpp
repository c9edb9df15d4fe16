#include "tests/jet/table/TableTestSupport.h"

namespace jet::test {
namespace {

/// Schema changes that cannot be made as asked: each has its error, and the file stays as it was.
class SchemaRefusal : public ::testing::Test {
 protected:
  SchemaRefusal() {
    database.Schema().CreateTable(Simple("teams"));
    database.Schema().CreateTable(Simple("players"));
    before = database.Bytes();
  }
  ~SchemaRefusal() override { EXPECT_EQ(database.Bytes(), before); }

  int Table(const TableSpec& table) {
    return ErrorOf([&] { database.Schema().CreateTable(table); });
  }
  int TableWith(const ColumnSpec& column) { return Table({"new", {column}, {}}); }
  int Index(const std::string& table, const std::string& name, std::vector<IndexColumn> columns,
            bool primary = false) {
    return ErrorOf([&] {
      database.Schema().CreateIndex(table, {name, std::move(columns), primary, false, false, false, false});
    });
  }
  int Relation(const RelationInfo& relation) {
    return ErrorOf([&] { database.Schema().CreateRelation(relation); });
  }

  TestDatabase database;
  std::vector<std::byte> before;
};

TEST_F(SchemaRefusal, OfTables) {
  EXPECT_EQ(Table(Simple("TEAMS")), 3010);
  EXPECT_EQ(Table(Simple("msysobjects")), 3010);
  EXPECT_EQ(Table({"new", {}, {}}), 3259);
  for (const char* name : {"", "a.b", "a[b", "x!", " x", "x ", "tab\t", "\xFF"}) {
    const int error = Table(Simple(name));
    EXPECT_TRUE(error == 3259 || error == 3421) << name;
  }
  EXPECT_EQ(Table(Simple(std::string(65, 'n'))), 3259);
  TableSpec many{"new", {}, {}};
  for (int i = 0; i < 256; ++i)
    many.columns.push_back(Column("c" + std::to_string(i), ColumnType::Byte));
  EXPECT_EQ(Table(many), 3259);
}

TEST_F(SchemaRefusal, OfColumns) {
  EXPECT_EQ(TableWith(Column("c", ColumnType::Text, 0)), 3259);
  EXPECT_EQ(TableWith(Column("c", ColumnType::Text, 256)), 3259);
  EXPECT_EQ(TableWith(Column("c", ColumnType::Binary, 511)), 3259);
  EXPECT_EQ(TableWith(Column("c", ColumnType::Block)), 3259);
  EXPECT_EQ(TableWith(Column("c", ColumnType{77})), 3259);
  ColumnSpec decimal = Column("c", ColumnType::Decimal);
  decimal.precision = 29;
  EXPECT_EQ(TableWith(decimal), 3259);
  decimal.precision = 3;
  decimal.scale = 4;
  EXPECT_EQ(TableWith(decimal), 3259);
  ColumnSpec automatic = Column("c", ColumnType::Text, 5);
  automatic.autoNumber = true;
  EXPECT_EQ(TableWith(automatic), 3259);
  EXPECT_EQ(Table({"new", {Column("c", ColumnType::Byte), Column("C", ColumnType::Long)}, {}}), 3259);
}

TEST_F(SchemaRefusal, OfIndexes) {
  EXPECT_EQ(Index("nobody", "i", {{"id"}}), 3078);
  EXPECT_EQ(Index("MSysObjects", "i", {{"Id"}}), 3259);
  EXPECT_EQ(Index("teams", "primarykey", {{"id"}}), 3010);
  EXPECT_EQ(Index("teams", "second", {{"id"}}, true), 3259);
  EXPECT_EQ(Index("teams", "i", {}), 3259);
  EXPECT_EQ(Index("teams", "i", {{"nothing"}}), 3259);
  EXPECT_EQ(Index("teams", "i", {{"id"}, {"ID"}}), 3259);
  EXPECT_EQ(
      Table({"new", {Column("m", ColumnType::Ole)}, {{"i", {{"m"}}, false, false, false, false, false}}}),
      3259);
}

TEST_F(SchemaRefusal, OfRelationships) {
  const RelationInfo good{"r", "players", {"parent"}, "teams", {"id"}, true, false, false};
  RelationInfo bad = good;
  bad.table = "nobody";
  EXPECT_EQ(Relation(bad), 3078);
  bad = good;
  bad.parentTable = "MSysObjects";
  EXPECT_EQ(Relation(bad), 3259);
  bad = good;
  bad.columns = {"nothing"};
  EXPECT_EQ(Relation(bad), 3259);
  bad = good;
  bad.parentColumns = {"parent"};  // no unique index
  EXPECT_EQ(Relation(bad), 3259);
  bad = good;
  bad.columns = {"name"};  // another type
  EXPECT_EQ(Relation(bad), 3259);
  bad = good;
  bad.columns = {"parent", "id"};
  EXPECT_EQ(Relation(bad), 3259);
  bad = good;
  bad.name = "PrimaryKey";  // the name of an index of the table
  EXPECT_EQ(Relation(bad), 3010);
}

TEST_F(SchemaRefusal, OfAPassword) {
  EXPECT_EQ(ErrorOf([&] { database.Schema().SetPassword("123456789012345678901"); }), 3259);
}

}  // namespace
}  // namespace jet::test
