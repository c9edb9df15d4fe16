#pragma once

#include <exception>
#include <string>
#include <utility>

#include "HLDataSrvc/Host.h"
#include "HLIData/Error.h"
#include "records/HLConsts.h"
#include "records/Succeeds.h"

namespace HLDataSrvc {

/// An error that a message box has shown already: an operation that fails by it shows none.
class ShownError : public HLIData::Error {
 public:
  using Error::Error;
};

/// Runs `lookUp`, which looks into a list. When it raises and loading the list has failed (`isShown`), the
/// error counts as shown.
template <typename LookUp>
auto LookUpIn(bool isShown, LookUp&& lookUp) {
  try {
    return std::forward<LookUp>(lookUp)();
  } catch (const std::exception& error) {
    if (!isShown) throw;
    throw ShownError(HLIData::ErrorNumber::ObjectNotSet, error.what());
  }
}

// The styles in which operations report a failure. Each operation keeps to one of them; all trap every error
// that is raised inside.

/// Runs `work(result)` and returns the result. When it raises, shows one message box with the operation's
/// sentence and the error's description, unless the error was shown already, and returns what the result held
/// at that moment: false, or an empty reference, until `work` sets it.
template <typename Result, typename Work>
Result ShowFailure(Host& host, const std::string& sentence, Work&& work) {
  Result result{};
  try {
    std::forward<Work>(work)(result);
  } catch (const ShownError&) {
    // One box for one failure.
  } catch (const std::exception& error) {
    host.ShowMessage(sentence + HLConsts::kLineBreak + error.what(), HLConsts::kServiceTitle);
  }
  return result;
}

/// Runs `work()` and returns its result. When it raises, puts the operation's sentence and the error's
/// description into `errorMessage`, or the description alone when `sentence` is empty, and returns false.
template <typename Work>
bool ReportFailure(std::string& errorMessage, const std::string& sentence, Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::exception& error) {
    errorMessage = sentence.empty() ? error.what() : sentence + HLConsts::kLineBreak + error.what();
    return false;
  }
}

}  // namespace HLDataSrvc
