#pragma once

#include <string>

#include "HLDataSrvc/Host.h"
#include "HLIData/Error.h"
#include "records/Failures.h"

namespace HLDataSrvc {

/// Raises the error of an operation that this version does not offer; the operation reports it in its own
/// style.
[[noreturn]] inline void RaiseNotAvailable() {
  throw HLIData::Error(HLIData::ErrorNumber::NotAvailable,
                       "This operation is not available in this version.");
}

/// Answers the failure of such an operation in the style of the message box.
template <typename Result>
Result ShowNotAvailable(Host& host, const std::string& sentence) {
  return ShowFailure<Result>(host, sentence, [](Result&) { RaiseNotAvailable(); });
}

/// Answers the failure of such an operation in the style of the out-parameter.
inline bool TellNotAvailable(std::string& errorMessage, const std::string& sentence = {}) {
  return TellFailure(errorMessage, sentence, []() -> bool { RaiseNotAvailable(); });
}

}  // namespace HLDataSrvc
