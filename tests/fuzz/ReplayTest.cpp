// The inputs that the fuzzers start from, and those that once broke something.
#include <filesystem>
#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "tests/fuzz/PackedFile.h"
#include "tests/fuzz/Targets.h"
#include "tests/support/TestFiles.h"

namespace fuzz {
namespace {

std::vector<std::uint8_t> Read(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class ReplayTest : public testing::TestWithParam<Target> {};

TEST_P(ReplayTest, EveryInputIsAnswered) {
  std::size_t count = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(HALCYRA_FUZZ_CORPUS "/") + GetParam().name)) {
    SCOPED_TRACE(entry.path().filename().string());
    const auto input = Read(entry.path());
    GetParam().run(input);
    // And what is cut off, or has another byte somewhere.
    for (std::size_t at = 1; at < input.size(); at += 1 + input.size() / 5) {
      GetParam().run(Input(input).first(at));
      auto changed = input;
      changed[at] ^= static_cast<std::uint8_t>(1 + at % 255);
      GetParam().run(changed);
    }
    ++count;
  }
  EXPECT_GT(count, 0u);
}

INSTANTIATE_TEST_SUITE_P(Of, ReplayTest, testing::ValuesIn(Targets().begin(), Targets().end()),
                         [](const auto& target) { return std::string(target.param.name); });

TEST(PackedFileTest, IsTheFile) {
  const auto file = jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb"));
  const auto packed = Pack(file);
  EXPECT_LT(packed.size(), file.size() / 3);
  EXPECT_EQ(Unpack({reinterpret_cast<const std::uint8_t*>(packed.data()), packed.size()}), file);
}

}  // namespace
}  // namespace fuzz
