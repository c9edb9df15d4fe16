#include "jet/format/DataPage.h"
#include "jet/format/PropertyBlob.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

const char* const kRequiredId =
    "4d523200 18000000 8000 1000 52006500710075006900720065006400"
    "19000000 0100 0a000000 0400 69006400 0900 01 01 0000 0100 01";

TEST(PropertyBlob, OfOneRequiredColumn_IsReadAndWritten) {
  const PropertyBlob blob = DecodeProperties(FromHex(kRequiredId));
  ASSERT_EQ(blob.blocks.size(), 1U);
  const PropertyBlob::Block* const block = blob.FindColumn("ID");
  ASSERT_NE(block, nullptr);
  const PropertyBlob::Property* const required = FindProperty(*block, "required");
  ASSERT_NE(required, nullptr);
  EXPECT_EQ(required->type, 1);
  EXPECT_EQ(ToHex(required->value), "01");
  PropertyBlob made;
  made.blocks.push_back({1, "id", {{"Required", 1, 1, FromHex("01")}}, {}});
  EXPECT_EQ(ToHex(EncodeProperties(made)), ToHex(FromHex(kRequiredId)));
}

TEST(PropertyBlob, OfEveryTableOfAFile_ComesBackByteForByte) {
  Bytes file = ReadTestFile("fixtures/league.mdb");
  int blobs = 0;
  for (std::size_t page = 1; page < file.size() / kPageSize; ++page) {
    const auto bytes = PageOf(file, page);
    if (LoadU8(bytes.data()) != 1 || LoadU32(bytes.data() + 4) != data_page::kOwnerLongValues) continue;
    const DataPageView view(bytes, static_cast<std::uint32_t>(page));
    for (std::size_t slot = 0; slot < view.SlotCount(); ++slot) {
      if (view.Slot(slot).flags != data_page::kLive) continue;
      const auto row = view.Row(slot);
      if (row.size() < 4 || ToHex(row.first(4)) != "4d523200") continue;
      EXPECT_EQ(ToHex(EncodeProperties(DecodeProperties(row))), ToHex(row));
      ++blobs;
    }
  }
  EXPECT_EQ(blobs, 7);  // the other tables have none, or short ones inside their rows
}

TEST(PropertyBlob, CutOffOrChanged_IsReadOrDamaged) {
  Random random;
  const Bytes good = FromHex(kRequiredId);
  for (std::size_t size = 1; size < good.size(); ++size) {
    const Bytes cut(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    const bool wholeChunks = size == 4 || size == 28;
    EXPECT_EQ(ErrorOf([&] { DecodeProperties(cut); }), wholeChunks ? 0 : kDamaged) << size;
  }
  for (int round = 0; round < 5000; ++round) {
    Bytes changed = good;
    changed[random.Below(static_cast<std::uint32_t>(changed.size()))] =
        static_cast<std::byte>(random.Below(256));
    const int error = ErrorOf([&] { EncodeProperties(DecodeProperties(changed)); });
    ASSERT_TRUE(error == 0 || error == kDamaged) << error;
  }
}

}  // namespace
}  // namespace jet::format::test
