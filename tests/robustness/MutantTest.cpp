// Damaged league files: whatever is in them, the library returns in time, in bounded memory, and with an
// error.
#include <atomic>
#include <cstdlib>
#include <ctime>
#include <iostream>
#include <new>
#include <random>

#include <gtest/gtest.h>
#include <malloc.h>

#include "jet/Check.h"
#include "jet/Error.h"
#include "storage/HLServiceUtils.h"
#include "tests/robustness/SeasonScript.h"
#include "tests/service/LeagueRows.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace {

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> peakBytes{0};

void* Allocate(std::size_t size) {
  void* memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  const std::size_t live = liveBytes += ::malloc_usable_size(memory);
  for (std::size_t peak = peakBytes; peak < live && !peakBytes.compare_exchange_weak(peak, live);) {
  }
  return memory;
}
void Free(void* memory) noexcept {
  if (memory != nullptr) liveBytes -= ::malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  return Allocate(size);
}
void* operator new[](std::size_t size) {
  return Allocate(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  void* memory = std::malloc(size);
  if (memory != nullptr) liveBytes += ::malloc_usable_size(memory);
  return memory;
}
void operator delete(void* memory) noexcept {
  Free(memory);
}
void operator delete[](void* memory) noexcept {
  Free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  Free(memory);
}

namespace HLDataSrvc::test {
namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kPage = 4096;
constexpr std::size_t kMostBytes = std::size_t{256} << 20;
constexpr char kFolder[] = "league";

/// Mutants of league.mdb, in turn with flipped bits, pages in each other's place, an end too early, and
/// pieces of other places and files.
class Mutants {
 public:
  explicit Mutants(unsigned seed) : m_random(seed) {}

  Bytes Next(std::size_t number) {
    Bytes bytes = m_sound;
    switch (number % 4) {
      case 0:
        for (std::size_t flips = 1 + Below(8); flips > 0; --flips) {
          const std::size_t page = Below(bytes.size() / kPage) * kPage;
          const std::size_t within = Below(2) == 0 ? Below(64) : Below(kPage);  // heads steer the reading
          bytes[page + within] ^= static_cast<std::byte>(1u << Below(8));
        }
        break;
      case 1:
        for (std::size_t swaps = 1 + Below(4); swaps > 0; --swaps) {
          const auto page = [&] { return bytes.begin() + Signed(Below(bytes.size() / kPage) * kPage); };
          const auto one = page();
          std::swap_ranges(one, one + kPage, page());
        }
        break;
      case 2:
        bytes.resize(Below(2) == 0 ? Below(bytes.size()) : Below(bytes.size() / kPage) * kPage);
        break;
      default: {
        const Bytes& from = Below(2) == 0 ? m_other : m_sound;
        const std::size_t size = 1 + Below(Below(2) == 0 ? 64 : 2 * kPage);
        std::copy_n(from.begin() + Signed(Below(from.size() - size)), size,
                    bytes.begin() + Signed(Below(bytes.size() - size)));
      }
    }
    return bytes;
  }

 private:
  std::size_t Below(std::size_t bound) { return m_random() % bound; }
  static std::ptrdiff_t Signed(std::size_t offset) { return static_cast<std::ptrdiff_t>(offset); }

  std::mt19937 m_random;
  const Bytes m_sound = jet::test::ReadWholeFile(jet::test::FixturePath("league.mdb"));
  const Bytes m_other = jet::test::ReadWholeFile(jet::test::FixturePath("league-blank.mdb"));
};

/// What became of a mutant.
struct Outcome {
  bool isOpen = false;
  bool isRead = false;   // every row of every table
  bool isSound = false;  // says Check
};

/// Measures the processor time of single operations.
class Stopwatch {
 public:
  template <typename Work>
  auto Time(const char* what, Work&& work) {
    m_what = what;
    m_start = std::clock();
    struct Stop {
      Stopwatch& watch;
      ~Stop() { watch.Note(); }
    } stop{*this};
    return work();
  }
  double Longest() const { return m_longest; }
  const char* LongestOne() const { return m_longestOne; }

 private:
  void Note() {
    const double seconds = static_cast<double>(std::clock() - m_start) / CLOCKS_PER_SEC;
    if (seconds <= m_longest) return;
    m_longest = seconds;
    m_longestOne = m_what;
  }
  const char* m_what = "";
  std::clock_t m_start = 0;
  double m_longest = 0;
  const char* m_longestOne = "";
};

Outcome Examine(Bytes bytes, Stopwatch& watch) {
  const auto files = std::make_shared<jet::test::MemoryFileSystem>();
  const std::string name = ScriptFile(kFolder);
  files->Put(name, std::move(bytes));
  Outcome outcome;
  try {
    const auto database = watch.Time("open", [&] {
      return jet::DBEngine({.files = files, .observer = {}})
          .OpenDatabase(name, true, false, HLServiceUtils::GetConnectString());
    });
    outcome.isOpen = true;
    outcome.isSound = watch.Time("check", [&] { return database->Check().findings.empty(); });
    watch.Time("read", [&] { return RowsOf(*database); });
    outcome.isRead = true;
  } catch (const jet::Error&) {
  }
  HLServiceUtils::ReplaceEngine({.files = files, .observer = {}});
  const auto host = std::make_shared<ScriptHost>(kFolder);
  const auto service = CreateDataService(host);
  std::string message;
  if (service->Initialize(HLIData::DBType::Live, message)) {
    watch.Time("season", [&] { return service->GetCurrentSeasonInfo(); });
    for (const auto kind : {HLIData::SearchType::PlayersAndTeams, HLIData::SearchType::Managers,
                            HLIData::SearchType::Prizes, HLIData::SearchType::Positions})
      watch.Time("search", [&] { return service->Search(kind, "a", false, true); });
  }
  return outcome;
}

/// Examines `count` mutants that follow from a seed.
void ExamineMutants(std::size_t count, unsigned seed) {
  Mutants mutants(seed);
  Stopwatch watch;
  Examine(mutants.Next(2), watch);  // what is made once and kept
  std::size_t open = 0, read = 0, sound = 0;
  peakBytes = liveBytes.load();
  for (std::size_t number = 0; number < count && !testing::Test::HasFailure(); ++number) {
    SCOPED_TRACE("seed " + std::to_string(seed) + ", mutant " + std::to_string(number));
    Bytes bytes = mutants.Next(number);
    const Outcome outcome = Examine(std::move(bytes), watch);
    EXPECT_LT(watch.Longest(), 1.0) << watch.LongestOne();
    EXPECT_LT(peakBytes.load(), kMostBytes);
    // What the checker passes can be read, at least.
    EXPECT_TRUE(outcome.isRead || !outcome.isSound);
    open += outcome.isOpen;
    read += outcome.isRead;
    sound += outcome.isSound;
  }
  HLServiceUtils::ReplaceEngine({});
  std::cout << count << " mutants of seed " << seed << ": " << open << " opened, " << read
            << " read to the end, " << sound << " sound; at most " << watch.Longest() << " s ("
            << watch.LongestOne() << ") and " << peakBytes / 1024 << " KiB for one.\n";
}

TEST(MutantTest, SomeAreMetWithErrors) {
  ExamineMutants(24, 1);
}

class SlowMutantTest : public testing::TestWithParam<unsigned> {};

TEST_P(SlowMutantTest, AreMetWithErrors) {
  ExamineMutants(1000, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Seeds, SlowMutantTest, testing::Range(101u, 121u));

}  // namespace
}  // namespace HLDataSrvc::test
