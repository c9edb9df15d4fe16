#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <windows.h>

#include "HLDataSrvc/Host.h"
#include "platform/windows/ComponentFile.h"
#include "platform/windows/WideText.h"
#include "tests/support/TestFiles.h"

namespace HLDataSrvc {
namespace {

TEST(WindowsHost, FindsOrdinaryAndReadOnlyFilesAlone) {
  const jet::test::TempFolder folder;
  const auto host = SystemHost();
  const auto find = [&](const std::string& name) { return host->FindFile(folder.Path() + "\\" + name); };
  for (const char* name : {"Halcyra - Live.mdb", "readonly.mdb", "hidden.mdb"})
    std::ofstream(folder.File(name)) << "x";
  SetFileAttributesW(ToWide(folder.File("readonly.mdb")).c_str(), FILE_ATTRIBUTE_READONLY);
  SetFileAttributesW(ToWide(folder.File("hidden.mdb")).c_str(), FILE_ATTRIBUTE_HIDDEN);
  std::filesystem::create_directory(folder.File("folder.mdb"));

  EXPECT_EQ(find("Halcyra - Live.mdb"), "Halcyra - Live.mdb");
  EXPECT_EQ(find("Halcyra - *.mdb"), "Halcyra - Live.mdb");
  EXPECT_EQ(find("read????.mdb"), "readonly.mdb");
  EXPECT_EQ(find("folder.mdb\\..\\readonly.mdb"), "readonly.mdb");
  for (const char* name :
       {"hidden.mdb", "folder.mdb", "f*.mdb", "missing.mdb", "missing\\live.mdb", "read???.mdb"})
    EXPECT_EQ(find(name), "") << name;
  SetFileAttributesW(ToWide(folder.File("readonly.mdb")).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST(WindowsHost, ApplicationFolderIsThatOfTheProgramWithoutASeparator) {
  const std::filesystem::path program = ComponentFile();
  EXPECT_EQ(program.filename(), "league_platform_tests.exe");
  EXPECT_EQ(SystemHost()->ApplicationFolder(), ToUtf8(program.parent_path().wstring()));
}

TEST(WindowsHost, TodayIsTheLocalDate) {
  const auto today = [] {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    return std::chrono::year(now.wYear) / now.wMonth / now.wDay;
  };
  const auto before = today();
  const auto answered = SystemHost()->Today();
  EXPECT_TRUE(answered == before || answered == today());
}

TEST(WideText, GoesBothWaysAndMarksWhatIsNoText) {
  for (const std::wstring text : {L"", L"Łuczak", L"\U0001F3C8 ball"})
    EXPECT_EQ(ToWide(ToUtf8(text)), text);
  EXPECT_EQ(ToUtf8(L"Brûlé"), "Br\xC3\xBBl\xC3\xA9");
  EXPECT_EQ(ToWide("a\xFFz"), L"a\uFFFDz");
  EXPECT_EQ(ToUtf8(std::wstring(L"a\xD800z")), "a\xEF\xBF\xBDz");
  EXPECT_EQ(ToUtf8(std::wstring(L"a\0z", 3)), std::string("a\0z", 3));
}

}  // namespace
}  // namespace HLDataSrvc
