// Random damage: the checker must neither crash nor hang, and must see what matters.
#include <cstdlib>
#include <random>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/check/Checker.h"
#include "tests/jet/check/CheckedFile.h"

namespace jet::test {
namespace {

constexpr std::size_t kPage = 4096;

unsigned Seed() {
  const char* given = std::getenv("HALCYRA_TEST_SEED");
  const unsigned seed =
      given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
  testing::Test::RecordProperty("seed", std::to_string(seed));
  return seed;
}

/// Checks damaged bytes; the error's text when they do not even open.
std::string Examine(std::vector<std::byte> bytes) {
  try {
    return Lines(CheckBytes(std::move(bytes)));
  } catch (const Error& error) {
    return std::string("refused: ") + error.what() + "\n";
  }
}

/// Damages one byte in each of `rounds` copies of a fixture. Heads of pages steer the reading, so that one
/// change in two goes there.
void DamageBytes(const char* fixture, int rounds) {
  const unsigned seed = Seed();
  std::mt19937 random(seed);
  const std::vector<std::byte> sound = ReadWholeFile(FixturePath(fixture));
  for (int round = 0; round < rounds; ++round) {
    std::vector<std::byte> bytes = sound;
    const std::size_t page = random() % (bytes.size() / kPage);
    const std::size_t at = page * kPage + (random() % 2 == 0 ? random() % 64 : random() % kPage);
    bytes[at] = static_cast<std::byte>(random());
    SCOPED_TRACE("HALCYRA_TEST_SEED=" + std::to_string(seed) + " round " + std::to_string(round) + " byte " +
                 std::to_string(at));
    EXPECT_LT(Examine(std::move(bytes)).size(), 200000U);
  }
}

TEST(CheckerOnDamage, AnyByteMayBeWrong) {
  DamageBytes("league-blank.mdb", 150);
  DamageBytes("league.mdb", 25);
}

TEST(CheckerOnDamage, WholePagesMayBeZeroOrStandInEachOthersPlace) {
  std::mt19937 random(Seed());
  const std::vector<std::byte> sound = ReadWholeFile(FixturePath("league.mdb"));
  const std::size_t pages = sound.size() / kPage;
  for (std::size_t round = 0; round < 16; ++round) {
    std::vector<std::byte> bytes = sound;
    const auto target = bytes.begin() + static_cast<std::ptrdiff_t>((1 + random() % (pages - 1)) * kPage);
    if (round % 2 == 0) {
      std::fill_n(target, kPage, std::byte{0});
    } else {
      std::copy_n(sound.begin() + static_cast<std::ptrdiff_t>((1 + random() % (pages - 1)) * kPage), kPage,
                  target);
    }
    const bool changed = bytes != sound;
    SCOPED_TRACE("page " + std::to_string((target - bytes.begin()) / static_cast<std::ptrdiff_t>(kPage)));
    const std::string findings = Examine(bytes);
    EXPECT_EQ(findings.empty(), !changed) << findings;
  }
}

TEST(CheckerOnDamage, TheHeaderPageMustNotBeFree) {
  std::vector<std::byte> bytes = ReadWholeFile(FixturePath("league.mdb"));
  bytes[2 * kPage - 69 + 5] |= std::byte{0x01};
  EXPECT_EQ(Examine(std::move(bytes)), "page 0: is marked free and belongs to header\n");
}

TEST(CheckerOnDamage, ColumnsHaveNamesThatCanBeWritten) {
  std::vector<std::byte> bytes = ReadWholeFile(FixturePath("league.mdb"));
  constexpr std::size_t kNameOfRanking = 48 * kPage + 0x111;  // at its last letter
  bytes[kNameOfRanking] = std::byte{0x01};
  EXPECT_NE(Examine(std::move(bytes)).find("has a name with control characters"), std::string::npos);
}

/// A change of one byte that must not go unnoticed, each in another structure of league.mdb.
struct Change {
  const char* what;
  std::size_t page;
  std::size_t offset;
  const char* finding;
};

class ChangedByte : public testing::TestWithParam<Change> {};

TEST_P(ChangedByte, IsFound) {
  std::vector<std::byte> bytes = ReadWholeFile(FixturePath("league.mdb"));
  bytes[GetParam().page * kPage + GetParam().offset] ^= std::byte{0x10};
  const std::string findings = Examine(bytes);
  EXPECT_NE(findings.find(GetParam().finding), std::string::npos) << GetParam().what << ":\n" << findings;
}

INSTANTIATE_TEST_SUITE_P(
    Places, ChangedByte,
    testing::Values(Change{"map of free pages", 1, 4096 - 69 + 5 + 8, "is marked free and belongs to"},
                    Change{"row count", 27, 0x10, "table 'player info': counts"},
                    Change{"free bytes of a definition", 27, 0x02, "wrong figure of free bytes"},
                    Change{"free space of a data page", 81, 0x02, "bytes are free"},
                    Change{"owner of a data page", 81, 0x04,
                           "its usage map lists pages without rows of it: 81"},
                    Change{"next leaf", 105, 0x10, "is not chained to its neighbours"},
                    Change{"entry mask", 105, 0x1b + 2, "index 'PrimaryKey' of table 'player info'"},
                    Change{"key of an entry", 105, 0x1e0 + 4, "is not the key of that row"}),
    [](const auto& suite) { return "Case" + std::to_string(suite.index); });

}  // namespace
}  // namespace jet::test
