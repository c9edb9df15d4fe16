// What only the machine's own file system shows: folders, rights, other processes, links.
#include <array>
#include <csignal>
#include <filesystem>
#include <functional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "jet/Error.h"
#include "jet/file/File.h"
#include "jet/file/PageStore.h"
#include "jet/file/RedoLog.h"
#include "tests/support/TestFiles.h"

namespace jet::test {
namespace {

const OpenMode kExclusive{true, false, false};
const OpenMode kSharedReader{false, true, false};

/// Number of the error that opening raises; 0 when it succeeds.
int OpenError(const std::string& name, const OpenMode& mode) {
  try {
    SystemFiles()->Open(name, mode);
  } catch (const Error& error) {
    return static_cast<int>(error.Number());
  }
  return 0;
}

/// Another process that runs `hold`, then waits until it is ended.
class OtherProcess {
 public:
  explicit OtherProcess(const std::function<std::shared_ptr<void>()>& hold) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    m_child = ::fork();
    if (m_child == 0) {
      const std::shared_ptr<void> held = hold();
      const char ready = held ? 'y' : 'n';
      if (::write(ends[1], &ready, 1) != 1) ::_exit(1);
      for (;;)
        ::pause();
    }
    ::close(ends[1]);
    char ready = 0;
    m_holds = ::read(ends[0], &ready, 1) == 1 && ready == 'y';
    ::close(ends[0]);
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;
  ~OtherProcess() { Kill(); }

  bool Holds() const { return m_holds; }
  void Kill() {
    if (m_child <= 0) return;
    ::kill(m_child, SIGKILL);
    ::waitpid(m_child, nullptr, 0);
    m_child = -1;
  }

 private:
  pid_t m_child = -1;
  bool m_holds = false;
};

class SystemFilesTest : public testing::Test {
 protected:
  void SetUp() override { WriteWholeFile(m_name, std::vector<std::byte>(10)); }

  TempFolder m_folder;
  std::string m_name = m_folder.File("league.mdb");
};

TEST_F(SystemFilesTest, LocksHoldAgainstOtherProcessesUntilTheyDie) {
  OtherProcess exclusive([&] { return std::shared_ptr<File>(SystemFiles()->Open(m_name, kExclusive)); });
  ASSERT_TRUE(exclusive.Holds());
  EXPECT_EQ(OpenError(m_name, kExclusive), 3356);
  EXPECT_EQ(OpenError(m_name, kSharedReader), 3045);
  exclusive.Kill();
  EXPECT_EQ(OpenError(m_name, kExclusive), 0);

  OtherProcess reader([&] { return std::shared_ptr<File>(SystemFiles()->Open(m_name, kSharedReader)); });
  ASSERT_TRUE(reader.Holds());
  EXPECT_EQ(OpenError(m_name, kSharedReader), 0);
  EXPECT_EQ(OpenError(m_name, kExclusive), 3045);
}

TEST_F(SystemFilesTest, LockFileCountsOnlyWhileSomebodyHoldsIt) {
  const std::string lockFile = m_folder.File("league.ldb");
  WriteWholeFile(lockFile, std::vector<std::byte>(64));
  EXPECT_EQ(OpenError(m_name, kExclusive), 0) << "left behind by a crash";

  OtherProcess sharer([&]() -> std::shared_ptr<void> {
    const int descriptor = ::open(lockFile.c_str(), O_RDWR);
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_start = 0x10000001;
    range.l_len = 1;
    if (::fcntl(descriptor, F_SETLK, &range) != 0) return nullptr;
    return std::make_shared<int>(descriptor);
  });
  ASSERT_TRUE(sharer.Holds());
  EXPECT_EQ(OpenError(m_name, kExclusive), 3045);
  EXPECT_EQ(OpenError(m_name, kSharedReader), 3045);
  sharer.Kill();
  EXPECT_EQ(OpenError(m_name, kExclusive), 0);
}

TEST_F(SystemFilesTest, TellsWhatIsWrongWithAName) {
  std::filesystem::create_directory(m_folder.File("folder.mdb"));
  EXPECT_EQ(OpenError(m_folder.File("missing.mdb"), kExclusive), 3024);
  EXPECT_EQ(OpenError(m_folder.File("missing\\league.mdb"), kExclusive), 3044);
  EXPECT_EQ(OpenError(m_folder.File("missing/new.mdb"), OpenMode{true, false, true}), 3044);
  EXPECT_EQ(OpenError(m_name + "/league.mdb", kExclusive), 3044) << "a file in the place of the folder";
  EXPECT_EQ(OpenError(m_folder.File("folder.mdb"), kExclusive), 3051);
  EXPECT_EQ(OpenError(m_folder.File("folder.mdb"), kSharedReader), 3051);
  EXPECT_EQ(OpenError(m_folder.File(std::string(300, 'x')), kExclusive), 3055);
  EXPECT_EQ(OpenError("/dev/null", kSharedReader), 3343);

  ASSERT_EQ(::mkfifo(m_folder.File("pipe").c_str(), 0600), 0);
  EXPECT_EQ(OpenError(m_folder.File("pipe"), kSharedReader), 3343) << "and does not wait for a writer";
}

TEST_F(SystemFilesTest, MissingRightsArePermissionDenied) {
  // The rights of files do not bind the superuser, so a child without his rights does the opening.
  ASSERT_EQ(::chmod(m_folder.Path().c_str(), 0555), 0);
  ASSERT_EQ(::chmod(m_name.c_str(), 0444), 0);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::geteuid() == 0 && ::seteuid(65534) != 0) ::_exit(9);
    if (OpenError(m_name, kExclusive) != 3051) ::_exit(1);
    if (OpenError(m_name, kSharedReader) != 0) ::_exit(2);
    if (OpenError(m_folder.File("new.mdb"), OpenMode{true, false, true}) != 3051) ::_exit(3);
    ::_exit(0);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "exit code " << WEXITSTATUS(status);
  ::chmod(m_folder.Path().c_str(), 0755);
}

/// A file of two pages, opened with its log.
class SystemLogTest : public SystemFilesTest {
 protected:
  void SetUp() override { WriteWholeFile(m_name, std::vector<std::byte>(2 * kPageSize)); }

  static std::unique_ptr<PageStore> Open(const std::string& name) {
    auto file = SystemFiles()->Open(name, {});
    auto log = std::make_unique<RedoLog>(SystemFiles(), name, Durability::Full);
    log->Recover(*file, false);
    auto pages = std::make_unique<PageStore>(std::move(file), name, std::move(log));
    pages->Start(0);
    return pages;
  }
  static void Fill(PageStore& pages, PageNumber number, int value) {
    PageBytes before;
    pages.Read(number, before);
    PageBytes after;
    after.fill(static_cast<std::byte>(value));
    const ChangedPage change{number, &before, &after};
    pages.Apply(std::span(&change, 1), 2);
  }
  static int First(PageStore& pages, PageNumber number) {
    PageBytes page;
    pages.Read(number, page);
    return std::to_integer<int>(page[0]);
  }
};

TEST_F(SystemLogTest, LiesBesideTheFileAndNotBesideALinkToIt) {
  const std::string link = m_folder.File("link.mdb");
  std::filesystem::create_symlink(m_name, link);
  Fill(*Open(link), 1, 7);  // and never closed
  EXPECT_EQ(First(*Open(m_name), 1), 7);
}

TEST_F(SystemLogTest, LiesBesideTheFileWhateverFolderTheProcessGoesTo) {
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(std::filesystem::path(m_name).parent_path());
  {
    const auto pages = Open(std::filesystem::path(m_name).filename().string());
    std::filesystem::current_path(before);
    Fill(*pages, 1, 7);
  }  // and never closed
  EXPECT_EQ(First(*Open(m_name), 1), 7);
}

TEST_F(SystemLogTest, IsMadeAnewWhenItWasRemoved) {
  {
    const auto pages = Open(m_name);
    Fill(*pages, 0, 7);
    std::filesystem::remove(m_name + "-log");
    Fill(*pages, 1, 8);
  }  // and never closed
  EXPECT_EQ(std::to_integer<int>(ReadWholeFile(m_name)[0]), 0);
  const auto pages = Open(m_name);
  EXPECT_EQ(First(*pages, 0), 7);
  EXPECT_EQ(First(*pages, 1), 8);
}

TEST_F(SystemFilesTest, ReplacingALinkedFileKeepsTheLink) {
  const std::string link = m_folder.File("link.mdb");
  std::filesystem::create_symlink(m_name, link);
  WriteWholeFile(m_folder.File("new.mdb"), std::vector<std::byte>(20));
  SystemFiles()->Replace(m_folder.File("new.mdb"), link, {});
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(std::filesystem::file_size(m_name), 20U);
}

TEST_F(SystemFilesTest, CreatingAFileBesideAHeldLockFileLeavesNothingBehind) {
  const std::string lockFile = m_folder.File("new.ldb");
  WriteWholeFile(lockFile, std::vector<std::byte>(64));
  OtherProcess sharer([&]() -> std::shared_ptr<void> {
    const int descriptor = ::open(lockFile.c_str(), O_RDWR);
    struct flock range {};
    range.l_type = F_WRLCK;
    return ::fcntl(descriptor, F_SETLK, &range) == 0 ? std::make_shared<int>(descriptor) : nullptr;
  });
  ASSERT_TRUE(sharer.Holds());
  EXPECT_EQ(OpenError(m_folder.File("new.mdb"), OpenMode{true, false, true}), 3045);
  EXPECT_FALSE(SystemFiles()->Exists(m_folder.File("new.mdb")));
}

}  // namespace
}  // namespace jet::test
