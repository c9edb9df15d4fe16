// Long values: the room that they take, and references to them that are wrong.
#include <string>

#include <gtest/gtest.h>

#include "jet/format/Bytes.h"
#include "jet/format/RowCodec.h"
#include "tests/jet/table/TableTestSupport.h"

namespace jet::test {
namespace {

class LongValuesOfATable : public testing::Test {
 protected:
  LongValuesOfATable() {
    database.Schema().CreateTable({"notes",
                                   {Column("id", ColumnType::Long), Column("first", ColumnType::Memo),
                                    Column("second", ColumnType::Memo)},
                                   {}});
  }
  Table& Notes() { return database.TableOf("notes"); }
  Value Read(RowId row, std::size_t column) { return Notes().Read(*Notes().Fetch(row), column); }
  std::size_t Pages() { return database.store->Pages().PageCount(); }

  /// The reference to a column's value in the row, for changing.
  std::byte* Reference(RowId row, std::size_t column) {
    const MutablePage page = database.store->Pages().Change(row.page);
    const auto bytes = format::DataPage(page.Bytes(), row.page).MutableRow(row.slot);
    const auto field = format::FieldOf(bytes, Notes().Definition().columns[column], true).bytes;
    return bytes.data() + (field.data() - bytes.data());
  }

  TestDatabase database;
};

TEST_F(LongValuesOfATable, TakeLittleMoreRoomThanTheirBytes) {
  // 5 values of the first length fill a page, 3 of the second and 2 of the third; all leave room that the
  // next just misses.
  const std::pair<std::size_t, std::size_t> lengths[] = {{700, 5}, {1100, 3}, {1500, 2}};
  int id = 0;
  for (const auto& [length, perPage] : lengths) {
    const std::size_t before = Pages();
    for (std::size_t i = 0; i < 60 * perPage; ++i)
      database.Add("notes", {++id, Value(), std::string(length, 'x')});
    EXPECT_LE(Pages() - before, 60U + 20U) << "for values of " << length << " bytes";
  }
  EXPECT_EQ(database.Check(), "");
}

TEST_F(LongValuesOfATable, APieceOfAnotherColumn_IsNotGivenBack) {
  const RowId row = database.Add("notes", {1, std::string(200, 'a'), std::string(200, 'b')});
  ChangeUnit damage(database.store->Pages());
  std::copy_n(Reference(row, 1), 12, Reference(row, 2));
  damage.Commit();
  const ColumnValue none{2, Value()};
  EXPECT_EQ(ErrorOf([&] {
              ChangeUnit unit(database.store->Pages());
              Notes().Update(row, {&none, 1});
              unit.Commit();
            }),
            3049);
  EXPECT_EQ(Read(row, 1), Value(std::string(200, 'a')));
}

TEST_F(LongValuesOfATable, AChainThatIsARing_IsDamageBeforeItFillsTheMemory) {
  const RowId row = database.Add("notes", {1, std::string(9000, 'a'), Value()});
  ChangeUnit damage(database.store->Pages());
  std::byte* const reference = Reference(row, 1);
  format::StoreU32(reference, 0x3FFFFFFF);
  const std::uint32_t piece = format::LoadU32(reference + 4);
  const MutablePage page = database.store->Pages().Change(format::RowPointerPage(piece));
  format::StoreU32(format::DataPage(page.Bytes(), page.Number()).MutableRow(0).data(), piece);
  damage.Commit();
  try {
    Read(row, 1);
    ADD_FAILURE() << "was read";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("longer than the file"), std::string::npos) << error.what();
  }
}

}  // namespace
}  // namespace jet::test
