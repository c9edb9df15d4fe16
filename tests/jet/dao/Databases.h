#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "tests/support/FaultyFileSystem.h"
#include "tests/support/MemoryFileSystem.h"
#include "tests/support/TestFiles.h"

namespace jet::test {

/// Runs `action`, which must raise the error; the error's sentence.
template <typename Action>
std::string ExpectError(ErrorNumber number, const Action& action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_EQ(error.Number(), number) << error.what();
    return error.what();
  }
  ADD_FAILURE() << "no error " << static_cast<int>(number) << " was raised";
  return {};
}

inline ColumnSpec MakeColumn(const char* name, ColumnType type, std::uint16_t length = 0) {
  ColumnSpec column;
  column.name = name;
  column.type = type;
  column.length = length;
  return column;
}

/// Tests on a fixture in memory, "league.mdb".
class LeagueTest : public testing::Test {
 protected:
  LeagueTest() {
    memory->Put("league.mdb", ReadWholeFile(FixturePath("league.mdb")));
    database = Open();
  }

  std::shared_ptr<Database> Open(bool readOnly = false) {
    EngineOptions options;
    options.files = files;
    return DBEngine(options).OpenDatabase("league.mdb", true, readOnly, kFixtureConnect);
  }
  std::shared_ptr<Recordset> Select(const std::string& sql) { return database->OpenRecordset(sql); }
  Value One(const std::string& sql) { return Select(sql)->Fields(0).Value(); }

  std::shared_ptr<MemoryFileSystem> memory = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>(memory);
  std::shared_ptr<Database> database;
};

}  // namespace jet::test
