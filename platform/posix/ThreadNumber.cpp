#include "platform/ThreadNumber.h"

#include <bit>

#include <pthread.h>

namespace HLDataSrvc {

std::uint64_t ThreadNumber() {
  return std::bit_cast<std::uintptr_t>(pthread_self());
}

}  // namespace HLDataSrvc
