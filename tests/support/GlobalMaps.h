#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace jet::test {

/// The same file with a global usage map that begins at page `first`, as some writers leave it: pages below
/// are in use, and the file has at least a few pages behind it. The file must not be encoded, and its map
/// inline.
std::vector<std::byte> WithGlobalMapFrom(std::vector<std::byte> file, std::uint32_t first);

}  // namespace jet::test
