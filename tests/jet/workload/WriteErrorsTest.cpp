// A write, a read or a sync fails, each in its turn: a change is stored whole or not at all, in memory as in
// the file.
#include <functional>
#include <memory>
#include <optional>

#include <gtest/gtest.h>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace jet::test {
namespace {

constexpr const char* kName = "league.mdb";

class UnderFileErrors : public testing::Test {
 protected:
  void SetUp() override { m_sound = ReadWholeFile(FixturePath(kName)); }

  std::shared_ptr<Database> Open() {
    EngineOptions options;
    options.files = m_files;
    options.cacheBytes = std::size_t{64} * 4096;
    return DBEngine(options).OpenDatabase(kName, true, false, kFixtureConnect);
  }

  /// All rows of the table that the changes are about, as one text.
  static std::string Players(Database& database) {
    std::string text;
    for (const auto rows =
             database.OpenRecordset("select * from [player info] where [id] > 2700 or [id] < 40");
         !rows->Eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->FieldCount(); ++i)
        text += rows->Fields(i).Value().ToText() + "|";
      text += "\n";
    }
    return text;
  }

  static std::string Findings(Database& database) {
    std::string text;
    for (const std::string& finding : database.Check().findings)
      text += finding + "\n";
    return text;
  }

  /// Lets the first operation fail during `change`, then the second, until none does.
  void FailEach(FileOperation operation, const std::function<void(Database&)>& change) {
    m_memory->Put(kName, m_sound);
    std::string before;
    std::string after;
    {
      const auto database = Open();
      before = Players(*database);
      change(*database);
      after = Players(*database);
    }
    ASSERT_NE(before, after);
    for (std::size_t nth = 1;; ++nth) {
      SCOPED_TRACE("operation " + std::to_string(nth));
      ASSERT_LT(nth, 500U);
      m_memory->Put(kName, m_sound);
      auto database = Open();
      m_files->FailOnce(operation, nth, ErrorNumber::DiskFull);
      bool stored = true;
      try {
        change(*database);
      } catch (const Error& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::DiskFull) << error.what();
        stored = false;
      }
      const bool failed = m_files->HasFailed();
      m_files->Mend();
      EXPECT_TRUE(stored || failed);
      EXPECT_EQ(Players(*database), stored ? after : before);
      database.reset();
      database = Open();
      EXPECT_EQ(Players(*database), stored ? after : before);
      EXPECT_EQ(Findings(*database), "");
      if (!failed) break;  // every operation has had its turn
    }
  }

  std::vector<std::byte> m_sound;
  std::shared_ptr<MemoryFileSystem> m_memory = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<FaultyFileSystem> m_files = std::make_shared<FaultyFileSystem>(m_memory);
};

void AddPlayer(Database& database) {
  const auto rows = database.OpenRecordset("select * from [player info] where [id] = 0");
  rows->AddNew();
  rows->Fields("id").Value(999999);
  rows->Fields("last name").Value("Nobody");
  rows->Update();
}

void LengthenPlayer(Database& database) {
  const auto rows = database.OpenRecordset("select * from [player info] where [id] < 40");
  rows->Edit();
  rows->Fields("last name").Value(std::string(50, 'W'));
  rows->Fields("first name").Value(std::string(50, 'M'));
  rows->Update();
}

void DeletePlayer(Database& database) {
  for (const auto rows = database.OpenRecordset("select * from [player info] where [id] < 40"); !rows->Eof();
       rows->MoveNext()) {
    try {
      rows->Delete();
      return;
    } catch (const Error& error) {
      if (error.Number() != ErrorNumber::RowIsReferred) throw;
    }
  }
}

TEST_F(UnderFileErrors, AddNewStoresTheWholeRowOrNothing) {
  FailEach(FileOperation::Write, AddPlayer);
}
TEST_F(UnderFileErrors, EditStoresTheWholeRowOrNothing) {
  FailEach(FileOperation::Write, LengthenPlayer);
}
TEST_F(UnderFileErrors, DeleteRemovesTheWholeRowOrNothing) {
  FailEach(FileOperation::Write, DeletePlayer);
}

TEST_F(UnderFileErrors, FailingReadsLeaveTheFileAlone) {
  FailEach(FileOperation::Read, AddPlayer);
  FailEach(FileOperation::Read, LengthenPlayer);
}

TEST_F(UnderFileErrors, AFileThatCanNoLongerBeWrittenRefusesChangesAndStaysReadable) {
  m_memory->Put(kName, m_sound);
  const auto database = Open();
  const std::string before = Players(*database);
  m_files->FailFrom(FileOperation::Write, 1, ErrorNumber::DiskFull);
  for (int attempt = 0; attempt < 3; ++attempt) {
    EXPECT_THROW(AddPlayer(*database), Error);
    EXPECT_EQ(Players(*database), before);
  }
  EXPECT_TRUE(m_files->HasFailed());
  EXPECT_EQ(m_memory->Get(kName), m_sound) << "not one write went through";
}

TEST_F(UnderFileErrors, AGroupOfUpdatesIsUndoneWhole) {
  FailEach(FileOperation::Write, [](Database& database) {
    database.BeginTrans();
    try {
      AddPlayer(database);
      LengthenPlayer(database);
      database.CommitTrans();
    } catch (const Error&) {
      try {
        database.Rollback();
      } catch (const Error&) {
        // The commit that failed has ended the group already.
      }
      throw;
    }
  });
}

}  // namespace
}  // namespace jet::test
