#pragma once

#include <cstdio>
#include <string_view>

namespace cli {

/// What the program says besides its result: errors, hints and notes, all on standard error.
///
/// Borrows the stream. A failure to write a message is not reported: there is nowhere left to report it.
class Messages {
 public:
  /// `colour`: errors stand out in red.
  Messages(std::FILE* stream, bool colour) : m_stream(stream), m_colour(colour) {}

  /// Drops notes from now on; errors and their hints are still shown.
  void SetQuiet(bool quiet) { m_quiet = quiet; }

  void Error(std::string_view text);
  /// Lines that belong to the error before them: what to do next, or where it came from.
  void Hint(std::string_view text);
  void Note(std::string_view text);
  /// A question, or the sign that a line can be typed: shown always, and without a line end.
  void Prompt(std::string_view text);

 private:
  void Line(std::string_view text);

  std::FILE* m_stream;
  bool m_colour;
  bool m_quiet = false;
};

}  // namespace cli
