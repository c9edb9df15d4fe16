#pragma once

#include <cstdint>

namespace HLDataSrvc {

/// The system's number of the calling thread. No two running threads share a number; a thread may get the
/// number of one that has ended.
std::uint64_t ThreadNumber();

}  // namespace HLDataSrvc
