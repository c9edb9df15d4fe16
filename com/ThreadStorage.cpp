// Returns the thread storage of the C++ runtime when the library is unloaded.
//
// The runtime is linked in. Its threads library allocates an index of thread storage at its first use and
// never frees it. A process has about a thousand, so one that loads and unloads the library again and again
// would run out of them. The definition of the import below makes the runtime's calls of TlsAlloc come here.

#include <array>
#include <atomic>
#include <cstddef>

#include <windows.h>

namespace {

using Allocate = decltype(&TlsAlloc);

std::array<DWORD, 16> g_indexes;
std::atomic<std::size_t> g_count{0};

/// Uses nothing of the runtime, which may be in the middle of starting.
DWORD WINAPI AllocateAndRemember() {
  const auto allocate = reinterpret_cast<Allocate>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "TlsAlloc")));
  const DWORD index = allocate();
  const std::size_t place = index == TLS_OUT_OF_INDEXES ? g_indexes.size() : g_count++;
  if (place < g_indexes.size()) g_indexes[place] = index;
  return index;
}

/// Runs after all other destructors of the library: they may still use the runtime.
[[gnu::destructor(101)]] void FreeIndexes() {
  for (std::size_t i = 0; i < g_count && i < g_indexes.size(); ++i)
    TlsFree(g_indexes[i]);
}

}  // namespace

#ifdef _WIN64
#define HALCYRA_IMPORT_OF_TLS_ALLOC "__imp_TlsAlloc"
#else
#define HALCYRA_IMPORT_OF_TLS_ALLOC "__imp__TlsAlloc@0"
#endif
extern "C" {
extern Allocate const ImportOfTlsAlloc asm(HALCYRA_IMPORT_OF_TLS_ALLOC);
Allocate const ImportOfTlsAlloc = &AllocateAndRemember;
}
