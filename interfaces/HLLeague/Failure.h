#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace HLLeague {

/// What kind of thing went wrong.
enum class FailureKind {
  Refused,       ///< refused, or failed, in the league's terms: a locked season, a name that fits several
  WrongUsage,    ///< what was asked for makes no sense: nothing to change, a text that is no number
  CannotOpen,    ///< the file is missing, in use, or has another password
  Damaged,       ///< the file is damaged, or is no league
  SystemFailed,  ///< the system failed: disk full, no permission
};

/// Why the league, or a client of it, could not do what was asked. Nothing was changed, unless the function
/// that raises it says otherwise.
class Failure : public std::runtime_error {
 public:
  /// `hint`: what to do next, in the words of the command line, on separate lines; may be empty.
  Failure(FailureKind kind, const std::string& text, std::string hint = {})
      : std::runtime_error(text), m_kind(kind), m_hint(std::move(hint)) {}

  FailureKind Kind() const noexcept { return m_kind; }
  const std::string& Hint() const noexcept { return m_hint; }

 private:
  FailureKind m_kind;
  std::string m_hint;
};

}  // namespace HLLeague
