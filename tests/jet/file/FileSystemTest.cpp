#include <functional>
#include <optional>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/file/File.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace jet::test {
namespace {

const OpenMode kExclusive{true, false, false};
const OpenMode kExclusiveReader{true, true, false};
const OpenMode kSharedWriter{false, false, false};
const OpenMode kSharedReader{false, true, false};
const OpenMode kCreate{true, false, true};

std::optional<ErrorNumber> ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.Number();
  }
  return std::nullopt;
}

std::vector<std::byte> Text(std::string_view text) {
  std::vector<std::byte> bytes;
  for (const char c : text)
    bytes.push_back(static_cast<std::byte>(c));
  return bytes;
}

std::vector<std::byte> ReadAll(File& file) {
  std::vector<std::byte> bytes(file.Size());
  file.Read(0, bytes);
  return bytes;
}

/// What every file system promises; run on the one in memory and on the machine's.
class FileSystemTest : public testing::TestWithParam<bool> {
 protected:
  std::optional<ErrorNumber> OpenError(const std::string& name, const OpenMode& mode) {
    return ErrorOf([&] { m_files->Open(name, mode); });
  }
  void Make(const std::string& name, std::string_view content) {
    m_files->Open(name, kCreate)->Write(0, Text(content));
  }

  TempFolder m_folder;
  std::string m_name = m_folder.Path() + "\\league.mdb";  // both separators occur
  std::shared_ptr<FileSystem> m_files = GetParam() ? std::make_shared<MemoryFileSystem>() : SystemFiles();
};

TEST_P(FileSystemTest, ReadsWhatWasWrittenAtAnyOffset) {
  const auto file = m_files->Open(m_name, kCreate);
  file->Write(4, Text("efgh"));
  file->Write(0, Text("abcd"));
  file->Sync();
  EXPECT_EQ(ReadAll(*file), Text("abcdefgh"));
  file->Resize(3);
  EXPECT_EQ(ReadAll(*file), Text("abc"));
  file->Resize(5);
  EXPECT_EQ(ReadAll(*file), Text(std::string_view("abc\0\0", 5)));
  std::vector<std::byte> tooMuch(6);
  EXPECT_EQ(ErrorOf([&] { file->Read(0, tooMuch); }), ErrorNumber::ReadFailed);
  EXPECT_EQ(ErrorOf([&] { file->Read(9, std::span(tooMuch).first(1)); }), ErrorNumber::ReadFailed);
}

TEST_P(FileSystemTest, RefusesNamesThatNoFileCanHave) {
  for (const char* name : {"", "folder/", "folder\\", "a*.mdb", "what?.mdb", "tab\t.mdb", "line\n.mdb"}) {
    EXPECT_EQ(OpenError(name, kExclusive), ErrorNumber::InvalidFileName) << name;
    EXPECT_EQ(OpenError(name, kCreate), ErrorNumber::InvalidFileName) << name;
  }
}

TEST_P(FileSystemTest, CreatesOnlyFilesThatAreNotThere) {
  EXPECT_EQ(OpenError(m_name, kExclusive), ErrorNumber::FileNotFound);
  EXPECT_FALSE(m_files->Exists(m_name));
  Make(m_name, "first");
  EXPECT_TRUE(m_files->Exists(m_folder.File("league.mdb")));
  EXPECT_EQ(OpenError(m_name, kCreate), ErrorNumber::ObjectExists);
  EXPECT_EQ(ReadAll(*m_files->Open(m_name, kExclusive)), Text("first"));
}

TEST_P(FileSystemTest, ReadOnlyFilesRefuseChanges) {
  Make(m_name, "fixed");
  const auto file = m_files->Open(m_name, kSharedReader);
  EXPECT_EQ(ErrorOf([&] { file->Write(0, Text("x")); }), ErrorNumber::PermissionDenied);
  EXPECT_EQ(ErrorOf([&] { file->Resize(0); }), ErrorNumber::PermissionDenied);
  file->Sync();
  EXPECT_EQ(ReadAll(*file), Text("fixed"));
}

TEST_P(FileSystemTest, SecondOpeningsInTheSameProcessRespectTheFirst) {
  Make(m_name, "locked");
  for (const OpenMode& held : {kExclusive, kExclusiveReader, kSharedWriter}) {
    const auto file = m_files->Open(m_name, held);
    EXPECT_EQ(OpenError(m_name, kExclusive), ErrorNumber::FileHeldExclusively);
    EXPECT_EQ(OpenError(m_name, kExclusiveReader), ErrorNumber::FileHeldExclusively);
    EXPECT_EQ(OpenError(m_name, kSharedWriter), ErrorNumber::FileInUse);
    EXPECT_EQ(OpenError(m_name, kSharedReader), ErrorNumber::FileInUse);
  }
  {
    const auto one = m_files->Open(m_name, kSharedReader);
    const auto two = m_files->Open(m_name, kSharedReader);
    EXPECT_EQ(OpenError(m_name, kExclusive), ErrorNumber::FileInUse);
    EXPECT_EQ(OpenError(m_name, kExclusiveReader), ErrorNumber::FileInUse);
    EXPECT_EQ(OpenError(m_name, kSharedWriter), ErrorNumber::FileInUse);
  }
  EXPECT_EQ(OpenError(m_name, kExclusive), std::nullopt);
}

TEST_P(FileSystemTest, ReplacesAndRemovesFiles) {
  const std::string other = m_folder.File("other.mdb");
  Make(m_name, "old");
  Make(other, "new");
  m_files->Replace(other, m_name, {});
  EXPECT_FALSE(m_files->Exists(other));
  EXPECT_EQ(ReadAll(*m_files->Open(m_name, kExclusive)), Text("new"));
  m_files->Remove(m_name);
  m_files->Remove(m_name);
  EXPECT_FALSE(m_files->Exists(m_name));
  EXPECT_EQ(ErrorOf([&] { m_files->Replace(other, m_name, {}); }), ErrorNumber::FileNotFound);
}

INSTANTIATE_TEST_SUITE_P(AllFileSystems, FileSystemTest, testing::Values(true, false),
                         [](const auto& suite) { return std::string(suite.param ? "Memory" : "System"); });

}  // namespace
}  // namespace jet::test
