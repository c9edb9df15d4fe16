#include "platform/ThreadNumber.h"

#include <windows.h>

namespace HLDataSrvc {

std::uint64_t ThreadNumber() {
  return GetCurrentThreadId();
}

}  // namespace HLDataSrvc
