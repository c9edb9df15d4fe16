#pragma once

#include <cstdio>
#include <string_view>

#include "cli/output/Output.h"

namespace cli {

/// What the program says besides its result: errors, hints and notes, all on standard error.
///
/// Results printed before a message go out first, so that the two are read in their order where both lead to
/// one terminal. Borrows stream and results. A failure to write a message is not reported: there is nowhere
/// left to report it.
class Messages {
 public:
  /// `colour`: errors stand out in red.
  Messages(std::FILE* stream, Output& results, bool colour)
      : m_stream(stream), m_results(results), m_colour(colour) {}

  /// Drops notes from now on; errors and their hints are still shown.
  void SetQuiet(bool quiet) { m_quiet = quiet; }

  void Error(std::string_view text);
  /// Lines that belong to the error before them: what to do next, or where it came from.
  void Hint(std::string_view text);
  void Note(std::string_view text);
  /// A question, or the sign that a line can be typed: shown always, and without a line end.
  void Prompt(std::string_view text);
  /// A line on a terminal that the next one takes the place of; an empty one is gone.
  void Transient(std::string_view text);
  bool IsQuiet() const { return m_quiet; }

 private:
  void Line(std::string_view text);
  void Write(std::string_view text);

  std::FILE* m_stream;
  Output& m_results;
  bool m_colour;
  bool m_quiet = false;
};

}  // namespace cli
