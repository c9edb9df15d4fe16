#include <array>
#include <memory>

#include <gtest/gtest.h>

#include "tests/support/FaultyFileSystem.h"
#include "tests/support/MemoryFileSystem.h"

namespace jet::test {
namespace {

TEST(FaultyFileSystem, FailsTheChosenOperationAndOnlyThat) {
  const auto memory = std::make_shared<MemoryFileSystem>();
  FaultyFileSystem files(memory);
  const auto file = files.Open("a", {true, false, true});
  const std::array<std::byte, 1> one{std::byte{1}};
  file->Write(0, one);
  files.FailOnce(FileOperation::Write, 2, ErrorNumber::DiskFull);
  file->Write(1, one);
  file->Sync();
  EXPECT_FALSE(files.HasFailed());
  EXPECT_THROW(file->Write(2, one), Error);
  EXPECT_TRUE(files.HasFailed());
  EXPECT_EQ(memory->Get("a").size(), 2U);
  file->Write(2, one);
  EXPECT_EQ(files.Count(FileOperation::Write), 4U);

  files.Mend();
  files.FailFrom(FileOperation::Sync, 1);
  EXPECT_THROW(file->Sync(), Error);
  EXPECT_THROW(file->Sync(), Error);
  files.Mend();
  EXPECT_NO_THROW(file->Sync());
  EXPECT_FALSE(files.HasFailed());
}

}  // namespace
}  // namespace jet::test
