#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "tests/fuzz/Targets.h"

namespace fuzz {

/// Any bytes as the bytes of a database file. Those that begin with an odd byte are the file, behind that
/// byte. Others are pages without the zeros within them, so that a database is small and its inputs
/// differ in what matters: for each page the length of its head and of its tail (2 bytes each, least
/// significant first), head and tail.
std::vector<std::byte> Unpack(Input input);

/// The packed form of a file, one of whole pages and no coded ones if it is to be small.
std::vector<std::byte> Pack(std::span<const std::byte> file);

}  // namespace fuzz
