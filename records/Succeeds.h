#pragma once

#include <exception>
#include <utility>

namespace HLDataSrvc {

/// Runs `work()` and returns whether it ended without an error, which is dropped: for operations whose only
/// answer is true or false.
template <typename Work>
bool Succeeds(Work&& work) {
  try {
    std::forward<Work>(work)();
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace HLDataSrvc
