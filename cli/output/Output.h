#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

/// Standard output, with every write checked: a result that is not whole is a failure. At a terminal, control
/// characters of the result, which may come from names, are replaced.
///
/// Borrows the stream. Raises Failure (SystemFailed) when the system does not take what is written; what the
/// stream still buffers is only known to be written once `Flush` has returned.
class Output {
 public:
  explicit Output(std::FILE* stream);

  void Write(std::string_view text);
  /// `text` and a line end.
  void Line(std::string_view text);
  /// Each text with a line end.
  void Lines(const std::vector<std::string>& texts);
  /// Clears the terminal, if the stream leads to one.
  void Clear();
  void Flush();
  /// As Flush, but leaves a failure for the next Flush to raise.
  void TryFlush();
  /// Whether the system has not taken all that was written.
  bool HasFailed() const { return m_error != 0; }

 private:
  void WriteBytes(std::string_view text);

  std::FILE* m_stream;
  bool m_isTerminal;
  int m_error = 0;  ///< the system's number of the first failure
};

}  // namespace cli
