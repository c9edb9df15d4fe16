#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace fuzz {

using Input = std::span<const std::uint8_t>;

/// What bytes of unknown origin are fed to. A target returns nothing: the library's
/// own errors are expected, any other exception ends the program, and so does an answer that contradicts
/// itself.
struct Target {
  const char* name;  ///< that of its folder of inputs, too
  void (*run)(Input input);
};

std::span<const Target> Targets();

}  // namespace fuzz
