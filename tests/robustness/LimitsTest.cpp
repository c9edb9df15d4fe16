// What would never end or never fit: links in rings, absurd counts, a file as large as files can be.
#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/file/Pager.h"
#include "storage/HLServiceUtils.h"
#include "tests/service/LeagueRows.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc::test {
namespace {

constexpr std::size_t kPage = 4096;
constexpr char kName[] = "limits.mdb";

/// Bytes at a place of league.mdb that lead the reading astray, and what reading the players says.
struct Astray {
  const char* what;
  std::size_t page;
  std::size_t offset;
  std::vector<int> bytes;
  const char* says;  // nullptr: the rows are read anyway
};

class AstrayTest : public testing::TestWithParam<Astray> {};

TEST_P(AstrayTest, EndsSoonWithAnError) {
  const Astray& astray = GetParam();
  std::vector<std::byte> file = jet::test::ReadWholeFile(jet::test::FixturePath("league.mdb"));
  for (std::size_t i = 0; i < astray.bytes.size(); ++i)
    file[astray.page * kPage + astray.offset + i] = static_cast<std::byte>(astray.bytes[i]);
  const auto files = std::make_shared<jet::test::MemoryFileSystem>();
  files->Put(kName, std::move(file));
  const auto start = std::chrono::steady_clock::now();
  const auto database = jet::DBEngine({.files = files, .observer = {}})
                            .OpenDatabase(kName, true, false, HLServiceUtils::GetConnectString());
  std::string said;
  std::size_t rows = 0;
  try {
    const auto players = database->OpenRecordset("select * from [player info] where [id] >= 1");
    for (; !players->Eof(); players->MoveNext())
      ++rows;
  } catch (const jet::Error& error) {
    said = error.what();
  }
  if (astray.says == nullptr) {
    EXPECT_EQ(said, "");
    EXPECT_EQ(rows, ExpectedRows("player info").size());
  } else {
    EXPECT_NE(said.find(astray.says), std::string::npos) << said << " " << rows;
  }
  EXPECT_FALSE(database->Check().findings.empty());
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20)) << "it went round";
}

INSTANTIATE_TEST_SUITE_P(
    Into, AstrayTest,
    testing::Values(Astray{"leaves in a ring", 106, 0x10, {108, 0, 0, 0}, "damaged"},
                    Astray{"branches in a ring", 29, 0x1E0 + 9, {0, 0, 0, 29}, "damaged"},
                    Astray{"definition in a ring", 27, 0x04, {27, 0, 0, 0}, "damaged"},
                    Astray{"definition as long as can be", 27, 0x08, {0xFF, 0xFF, 0xFF, 0xFF}, "damaged"},
                    Astray{"columns as many as can be", 27, 0x2D, {0xFF, 0xFF}, "damaged"},
                    Astray{"columns ever as many as can be", 27, 0x29, {0xFF, 0xFF}, "damaged"},
                    Astray{"indexes as many as can be", 27, 0x33, {0xFF, 0xFF, 0xFF, 0xFF}, "damaged"},
                    Astray{
                        "logical indexes as many as can be", 27, 0x2F, {0xFF, 0xFF, 0xFF, 0x7F}, "damaged"},
                    Astray{"rows as many as can be", 27, 0x10, {0xFF, 0xFF, 0xFF, 0xFF}, nullptr}),
    [](const auto& suite) { return "Case" + std::to_string(suite.index); });

// Sparse files: opening one takes no longer for its size, and none grows past 2 GiB.
TEST(LargestFileTest, OpensAndTakesNoFurtherPage) {
  constexpr std::uintmax_t kMost = std::uintmax_t{1} << 31;
  const jet::test::TempFolder folder;
  const std::string path = jet::test::CopyFixture("league.mdb", folder);
  const auto number = [](const auto& work) {
    try {
      work();
    } catch (const jet::Error& error) {
      return error.Number();
    }
    return jet::ErrorNumber{};
  };
  const auto open = [&] {
    return jet::DBEngine().OpenDatabase(path, true, false, HLServiceUtils::GetConnectString());
  };
  std::filesystem::resize_file(path, kMost + kPage);
  EXPECT_EQ(number(open), jet::ErrorNumber::FileTooLarge);
  std::filesystem::resize_file(path, kMost);
  EXPECT_EQ(RowsOf(*open()).at("player info").size(), ExpectedRows("player info").size());

  std::filesystem::resize_file(path, kMost - 2 * kPage);
  auto store = std::make_unique<jet::PageStore>(jet::SystemFiles()->Open(path, {}), path);
  store->Start(0);
  jet::Pager pager(std::move(store), std::size_t{1} << 20);
  jet::ChangeUnit unit(pager);
  pager.Append();
  pager.Append();
  EXPECT_EQ(number([&] { pager.Append(); }), jet::ErrorNumber::FileTooLarge);
  unit.Commit();
  EXPECT_EQ(std::filesystem::file_size(path), kMost);
}

}  // namespace
}  // namespace HLDataSrvc::test
