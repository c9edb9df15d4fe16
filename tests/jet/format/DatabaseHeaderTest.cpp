#include <bit>

#include "jet/format/DatabaseHeader.h"
#include "jet/format/Rc4.h"
#include "tests/jet/format/FormatTestSupport.h"

namespace jet::format::test {
namespace {

const double kCreated = std::bit_cast<double>(std::uint64_t{0x40E4EC4F6BD4AF81});  // 2017-04-25 11:33:57

Bytes FreshPage(const std::string& password) {
  DatabaseHeader header;
  header.created = kCreated;
  header.build = 4518;
  header.password = password;
  Bytes page(kPageSize, std::byte{0xEE});
  EncodeDatabaseHeader(header, page);
  return page;
}

TEST(DatabaseHeader, OfFilesByAnotherWriter_IsReadWithPasswordAndKey) {
  const auto decode = [](const char* name) {
    Bytes file = ReadTestFile(std::string("fixtures/") + name);
    return DecodeDatabaseHeader(PageOf(file, 0), name);
  };
  EXPECT_EQ(decode("league.mdb").password, "talwep83rn");
  EXPECT_EQ(decode("league.mdb").databaseKey, 0U);
  EXPECT_EQ(decode("league-blank.mdb").password, "talwep83rn");
  EXPECT_NE(decode("league-blank.mdb").created, decode("league.mdb").created);
  EXPECT_EQ(decode("league-no-password.mdb").password, "");
  EXPECT_EQ(decode("league-damaged-password.mdb").password, "otherpw123");
  EXPECT_EQ(decode("league-damaged-header-only.mdb").password, "talwep83rn");
}

TEST(DatabaseHeader, OfAnEncodedFile_GivesTheKeyThatDecodesItsPages) {
  Bytes encoded = ReadTestFile("fixtures/league-encoded.mdb");
  Bytes plain = ReadTestFile("fixtures/league.mdb");
  const std::uint32_t key = DecodeDatabaseHeader(PageOf(encoded, 0), "league-encoded.mdb").databaseKey;
  ASSERT_NE(key, 0U);
  for (std::uint32_t page : {1U, 2U, 100U, 162U}) {
    Bytes pageKey(4);
    StoreU32(pageKey.data(), key ^ page);
    ApplyRc4(pageKey, PageOf(encoded, page));
    EXPECT_EQ(ToHex(PageOf(encoded, page)), ToHex(PageOf(plain, page))) << "page " << page;
  }
}

TEST(DatabaseHeader, Written_EqualsTheOneOfANewFile) {
  const Bytes page = FreshPage("");
  EXPECT_EQ(ToHex(std::span(page).first(0x2C)),
            "000100005374616e64617264204a657420444200"
            "01000000b56e03626009c255e9a96772403f009c7e9f90ff");
  EXPECT_EQ(ToHex(std::span(page).subspan(0x98, 8)), "54060000342e3000");
  EXPECT_EQ(ToHex(std::span(page).subspan(0xE00, 6)), "010100010001");
  const DatabaseHeader back = DecodeDatabaseHeader(page, "new.mdb");
  EXPECT_EQ(back.created, kCreated);
  EXPECT_EQ(back.build, 4518U);
  EXPECT_EQ(back.codePage, 1252);
}

TEST(DatabaseHeader, PasswordField_IsMaskedWithTheDate) {
  Bytes page = FreshPage("abc");
  ApplyRc4(FromHex("c7da396b"), std::span(page).subspan(0x18, 128));
  EXPECT_EQ(ToHex(std::span(page).subspan(0x42, 12)), "03a7620001a7000062a70000");
}

TEST(DatabaseHeader, StorePassword_ChangesNothingElse) {
  Bytes page = FreshPage("");
  const Bytes before = page;
  page[0x700] = std::byte{0x5A};
  StorePassword(page, "päss wörd \xF0\x9F\x8F\x88 1234567");  // 20 units
  EXPECT_EQ(DecodeDatabaseHeader(page, "x").password, "päss wörd \xF0\x9F\x8F\x88 1234567");
  for (std::size_t i = 0; i < kPageSize; ++i) {
    if ((i < 0x42 || i >= 0x6A) && i != 0x700) {
      ASSERT_EQ(page[i], before[i]) << i;
    }
  }
  const Bytes kept = page;
  EXPECT_EQ(ErrorOf([&] { StorePassword(page, "123456789012345678901"); }), 3259);
  EXPECT_EQ(page, kept);
}

TEST(DatabaseHeader, OfNoDatabase_IsRefusedAndSaysWhy) {
  const auto messageOf = [](const Bytes& page) -> std::string {
    try {
      DecodeDatabaseHeader(page, "some.mdb");
    } catch (const Error& error) {
      return std::to_string(static_cast<int>(error.Number())) + " " + error.what();
    }
    return "";
  };
  EXPECT_EQ(messageOf({}), "3343 The file 'some.mdb' is not a Jet database.");
  Bytes page = FreshPage("");
  EXPECT_EQ(messageOf(Bytes(page.begin(), page.begin() + 4000)),
            "3343 The file 'some.mdb' is too short to be a Jet database.");
  page[0x14] = std::byte{0};
  EXPECT_NE(messageOf(page).find("Jet 3"), std::string::npos);
  page[0x14] = std::byte{2};
  EXPECT_NE(messageOf(page).find("newer"), std::string::npos);
  page[0x04] = std::byte{'X'};
  EXPECT_NE(messageOf(page).find("is not a Jet database"), std::string::npos);
}

TEST(DatabaseHeader, WithACreationDateThatIsNone_IsDamaged) {
  for (const double date : {1e300, -3e9, std::bit_cast<double>(~std::uint64_t{0})}) {
    Bytes page = FreshPage("");
    const auto masked = std::span(page).subspan(0x18, 128);
    ApplyRc4(FromHex("c7da396b"), masked);
    StoreU64(page.data() + 0x72, std::bit_cast<std::uint64_t>(date));
    ApplyRc4(FromHex("c7da396b"), masked);
    EXPECT_EQ(ErrorOf([&] { DecodeDatabaseHeader(page, "x"); }), kDamaged);
  }
}

}  // namespace
}  // namespace jet::format::test
