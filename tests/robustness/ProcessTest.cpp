// Real processes on real files: killed in mid-save, out of space, without permission, racing for a file.
#include <array>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <random>
#include <thread>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "jet/Error.h"
#include "storage/HLServiceUtils.h"
#include "tests/robustness/SeasonRun.h"
#include "tests/robustness/SeasonScript.h"
#include "tests/support/TestFiles.h"
#include "tests/support/Witnesses.h"

namespace HLDataSrvc::test {
namespace {

/// A child process that runs `work` with the writing end of a pipe, and what it writes there.
class Child {
 public:
  template <typename Work>
  explicit Child(const Work& work) {
    if (::pipe(m_ends.data()) != 0) throw std::runtime_error("no pipe");
    m_process = ::fork();
    if (m_process == 0) {
      ::close(m_ends[0]);
      int code = 1;
      try {
        code = work(m_ends[1]) ? 0 : 2;
      } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
      }
      ::_exit(code);
    }
    ::close(m_ends[1]);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    if (m_process > 0) Kill();
    ::close(m_ends[0]);
  }
  /// The next byte that it writes; 0 when it is gone.
  char Next() {
    char byte = 0;
    return ::read(m_ends[0], &byte, 1) == 1 ? byte : '\0';
  }
  std::size_t Rest() {
    std::size_t count = 0;
    while (Next() != '\0')
      ++count;
    return count;
  }
  void Kill() {
    ::kill(m_process, SIGKILL);
    Wait();
  }
  /// Its exit code; -1 when a signal ended it.
  int Wait() {
    int status = 0;
    ::waitpid(std::exchange(m_process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  std::array<int, 2> m_ends{};
  pid_t m_process = -1;
};

void Tell(int pipe, char byte) {
  if (::write(pipe, &byte, 1) != 1) ::_exit(3);
}

class ProcessTest : public testing::Test {
 protected:
  static const std::vector<std::byte>& Start() {
    static const std::vector<std::byte> start = SmallLeague();
    return start;
  }
  static const SeasonStates& States() {
    static const SeasonStates states = PlayedSeason(Start());
    return states;
  }
  void Put() const { jet::test::WriteWholeFile(m_path, Start()); }
  Tables Rows() const { return SoundRows(jet::SystemFiles(), m_name); }
  std::shared_ptr<ScriptHost> Host() const { return std::make_shared<ScriptHost>(m_folder.Path()); }

  /// Has the service of this thread write a byte for each change that is done.
  static void TellChanges(int pipe) {
    HLServiceUtils::ReplaceEngine(
        {.files = {},
         .observer = std::make_shared<Acknowledged>([] { return true; }, [pipe] { Tell(pipe, 'c'); })});
  }
  bool PlayAll(int pipe) const {
    TellChanges(pipe);
    SeasonScript script(Host());
    for (int step = 0; step < SeasonScript::kSteps; ++step)
      script.Play(step);
    script.Close();
    return true;
  }

  void KillAtRandomMoments(int times) {
    std::mt19937 random(std::random_device{}());
    const std::size_t changes = States().Commits();
    std::size_t inMidSeason = 0;
    std::size_t withLog = 0;
    for (int i = 0; i < times && !HasFailure(); ++i) {
      Put();
      Child child([&](int pipe) { return PlayAll(pipe); });
      std::size_t told = 0;
      for (const std::size_t until = random() % (changes + 1); told < until && child.Next() != '\0';)
        ++told;
      std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
      child.Kill();
      told += child.Rest();
      SCOPED_TRACE("killed after " + std::to_string(told) + " changes");
      inMidSeason += told < changes ? 1u : 0u;
      withLog += std::filesystem::exists(m_path + "-log") ? 1u : 0u;
      ExpectWhole(States(), Rows(), told);
      EXPECT_FALSE(std::filesystem::exists(m_path + "-log"));
      if (i % 10 == 0) {
        EXPECT_EQ(jet::test::IndependentCheck(m_path, false, HLServiceUtils::kDatabasePassword), "");
      }
    }
    std::cout << times << " processes killed, " << inMidSeason << " before their last change, " << withLog
              << " with a log left behind.\n";
    EXPECT_GT(withLog, 0u);
  }

  jet::test::TempFolder m_folder;
  const std::string m_name = ScriptFile(m_folder.Path());
  const std::string m_path = m_folder.File("Halcyra - Live.mdb");
};

TEST_F(ProcessTest, KilledOnesLoseNothing) {
  KillAtRandomMoments(10);
}

TEST_F(ProcessTest, SlowKilledOnesLoseNothing) {
  KillAtRandomMoments(250);
}

// A limit on the size of files is met in the middle of a write, as the end of a disk is.
TEST_F(ProcessTest, FullDiskLosesNothing) {
  for (const rlim_t limit : {0u, 300u, 600u, 5000u, 9000u, 30000u, 70000u, 150000u, 250000u}) {
    SCOPED_TRACE("limit " + std::to_string(limit));
    Put();
    Child child([&](int pipe) {
      std::signal(SIGXFSZ, SIG_IGN);
      TellChanges(pipe);
      const auto limitTo = [](rlim_t size) {
        const rlimit most{size, RLIM_INFINITY};
        return ::setrlimit(RLIMIT_FSIZE, &most) == 0;
      };
      limitTo(limit);
      SeasonScript script(Host());
      int step = 0;
      try {
        for (; step < SeasonScript::kSteps; ++step)
          script.Play(step);
        script.Close();
      } catch (const std::exception&) {
        Tell(pipe, 'x');
        return false;
      }
      return true;
    });
    std::size_t changes = 0;
    char told = child.Next();
    for (; told == 'c'; told = child.Next())
      ++changes;
    EXPECT_EQ(told, 'x');
    EXPECT_EQ(child.Wait(), 2);
    // The change that failed was seen to return, with an error.
    const Tables rows = Rows();
    EXPECT_TRUE(rows == States().After(changes) || (changes > 0 && rows == States().After(changes - 1)))
        << "not the rows after " << changes << " changes";
  }
}

TEST_F(ProcessTest, LostPermissionIsToldAndLosesNothing) {
  Put();
  std::filesystem::permissions(m_folder.Path(), std::filesystem::perms::all);
  std::filesystem::permissions(m_path, std::filesystem::perms::all);
  Child child([&](int) {
    constexpr uid_t kNobody = 65534;
    if (::geteuid() == 0 &&
        (::chown(m_folder.Path().c_str(), kNobody, kNobody) != 0 || ::seteuid(kNobody) != 0))
      return false;
    HLServiceUtils::ReplaceEngine({});
    const auto host = Host();
    SeasonScript script(host);
    ::chmod(m_folder.Path().c_str(), 0500);
    try {
      script.Play(1);
      return false;
    } catch (const std::exception&) {
    }
    ::chmod(m_folder.Path().c_str(), 0700);
    for (int step = 0; step < SeasonScript::kSteps; ++step)
      script.Play(step);
    script.Close();
    return true;
  });
  EXPECT_EQ(child.Wait(), 0);
  EXPECT_TRUE(Rows() == States().Last());
}

TEST_F(ProcessTest, FileThatIsRemovedTakesNoMoreChanges) {
  Put();
  HLServiceUtils::ReplaceEngine({});
  std::size_t step = 0;
  {
    SeasonScript script(Host());
    script.Play(0);
    std::filesystem::rename(m_path, m_path + ".moved");
    script.Play(1);
    std::filesystem::rename(m_path + ".moved", m_path);
    script.Play(2);
    std::filesystem::remove(m_path);
    EXPECT_THROW(script.Play(3), std::exception);
    EXPECT_THROW(script.Close(), jet::Error);
  }
  EXPECT_THROW(Rows(), jet::Error);
  // The file put back as it was opened, what was saved before is there.
  Put();
  {
    SeasonScript script(Host());
    for (step = 3; step < SeasonScript::kSteps; ++step)
      script.Play(static_cast<int>(step));
  }
  EXPECT_TRUE(Rows() == States().Last());
}

TEST_F(ProcessTest, OneOfTwoRacersWins) {
  for (int round = 0; round < 12; ++round) {
    Put();
    if (round % 2 == 0) {  // with a log to replay
      Child killed([&](int pipe) { return PlayAll(pipe); });
      for (int i = 0; i < 5; ++i)
        killed.Next();
      killed.Kill();
    }
    std::array<int, 2> start{};
    ASSERT_EQ(::pipe(start.data()), 0);
    const auto race = [&](int pipe) {
      HLServiceUtils::ReplaceEngine({});
      char go = 0;
      if (::read(start[0], &go, 1) != 1) return false;
      const auto service = CreateDataService(Host());
      std::string message;
      const bool isOpen = service->Initialize(HLIData::DBType::Live, message);
      Tell(pipe,
           isOpen ? 'w'
           : message.find("in use") != std::string::npos || message.find("exclusively") != std::string::npos
               ? 'l'
               : '?');
      ::pause();
      return true;
    };
    {
      Child one(race);
      Child other(race);
      ASSERT_EQ(::write(start[1], "gg", 2), 2);
      EXPECT_EQ(one.Next() + other.Next(), 'w' + 'l');
      EXPECT_THROW(Rows(), jet::Error);
    }
    ::close(start[0]);
    ::close(start[1]);
    Rows();  // the lock died with its owner
  }
}

TEST_F(ProcessTest, OneOfTwoServicesWins) {
  Put();
  for (int round = 0; round < 20; ++round) {
    std::array<std::shared_ptr<HLIData::IDataService>, 2> services;
    std::array<bool, 2> isOpen{};
    std::array<std::thread, 2> threads;
    for (std::size_t i = 0; i < 2; ++i) {
      threads[i] = std::thread([&, i] {
        std::string message;
        services[i] = CreateDataService(Host());
        isOpen[i] = services[i]->Initialize(HLIData::DBType::Live, message);
      });
    }
    for (std::thread& thread : threads)
      thread.join();
    EXPECT_EQ(isOpen[0] + isOpen[1], 1);
    services = {};
    Rows();
  }
}

}  // namespace
}  // namespace HLDataSrvc::test
