// A target for libFuzzer: HALCYRA_FUZZ_TARGET says which.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "tests/fuzz/Targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::Target target = [] {
    for (const fuzz::Target& candidate : fuzz::Targets()) {
      if (std::string_view(candidate.name) == HALCYRA_FUZZ_TARGET) return candidate;
    }
    std::abort();
  }();
  target.run({data, size});
  return 0;
}
