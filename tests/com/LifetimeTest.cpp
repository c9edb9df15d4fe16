// How long the library lives: threads that end after they used it, and loading and unloading it.

#include <array>
#include <string>
#include <thread>

#include "tests/com/ComTest.h"

namespace HLDataSrvc::Com::test {
namespace {

/// The file that the registry names as the library.
std::wstring LibraryFile() {
  std::wstring id(39, L'\0');
  StringFromGUID2(__uuidof(::DataService), id.data(), 39);
  const std::wstring key = L"CLSID\\" + std::wstring(id.c_str()) + L"\\InprocServer32";
  std::array<wchar_t, 1024> file{};
  DWORD size = sizeof file;
  EXPECT_EQ(RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, file.data(), &size),
            0);
  return file.data();
}

template <typename Function>
Function ExportOf(HMODULE library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

class Lifetime : public ComTest {
 protected:
  /// What a thread of a program does with one of the league's files, from the start of its apartment to the
  /// end.
  static void UseInThisThread(LONG file) {
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    {
      const auto service = OpenService(file);
      ComPtr<::IKeyedCollection> positions;
      EXPECT_EQ(service->GetPlayerPositions(positions.Put()), S_OK);
      EXPECT_GT(CountOf(positions), 0);
    }
    CoUninitialize();
  }
};

TEST_F(Lifetime, ThreadsEndThatUsedTheLibrary) {
  const auto held = Create<::IDataService>(L"DataService");  // keeps the library loaded
  const auto useAgainAndAgain = [](LONG file) {
    for (int i = 0; i < 50; ++i)
      std::thread([file] { UseInThisThread(file); }).join();
  };
  std::thread beside([&] { useAgainAndAgain(DBTypeLive); });
  useAgainAndAgain(DBTypeTest);
  beside.join();
}

TEST_F(Lifetime, TheLastThreadToEndLeavesTheLibraryUnloadable) {
  std::thread([] { UseInThisThread(DBTypeTest); }).join();
  CoFreeUnusedLibrariesEx(0, 0);
  EXPECT_EQ(GetModuleHandleW(L"HLDataSrvc.dll"), nullptr);
}

TEST_F(Lifetime, TheLibraryLoadsAndUnloadsAHundredTimes) {
  const std::wstring file = LibraryFile();
  DWORD storageBefore = 0;
  for (int i = 0; i < 100; ++i) {
    const HMODULE library = LoadLibraryW(file.c_str());
    ASSERT_NE(library, nullptr) << "load " << i;
    const auto classObject = ExportOf<decltype(&DllGetClassObject)>(library, "DllGetClassObject");
    const auto canUnload = ExportOf<decltype(&DllCanUnloadNow)>(library, "DllCanUnloadNow");
    {
      ComPtr<IClassFactory> factory;
      ComPtr<::IDataService> service;
      Text message;
      VARIANT_BOOL isOpen = VARIANT_FALSE;
      EXPECT_EQ(classObject(__uuidof(::DataService), IID_IClassFactory, factory.PutVoid()), S_OK);
      EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(::IDataService), service.PutVoid()), S_OK);
      EXPECT_EQ(service->Initialize(DBTypeTest, message.Put(), &isOpen), S_OK);
      EXPECT_EQ(isOpen, VARIANT_TRUE) << ToNarrow(message.Value());
      EXPECT_EQ(canUnload(), S_FALSE) << "objects are left";
    }
    ASSERT_EQ(canUnload(), S_OK) << "load " << i;
    ASSERT_NE(FreeLibrary(library), FALSE);
    ASSERT_EQ(GetModuleHandleW(L"HLDataSrvc.dll"), nullptr) << "load " << i;
    // A process has about a thousand indexes of thread storage, so none may be lost.
    const DWORD storage = TlsAlloc();
    TlsFree(storage);
    if (i == 0) storageBefore = storage;
    ASSERT_EQ(storage, storageBefore) << "load " << i;
  }
}

}  // namespace
}  // namespace HLDataSrvc::Com::test
