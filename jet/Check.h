#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace jet {

/// What the engine's integrity checker found in a file.
struct CheckReport {
  std::vector<std::string>
      findings;  ///< one sentence each, naming the structure at fault; empty: the file is sound
  std::uint32_t pages = 0;
  std::uint32_t tables = 0;
  std::uint32_t indexes = 0;
  std::uint64_t rows = 0;
};

}  // namespace jet
