#include "cli/line/ScriptWords.h"

#include <cstddef>

#include "cli/commands/ExitCode.h"

namespace cli {

using namespace HLLeague;

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

/// Every byte of a character outside ASCII counts as one.
bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

/// Reads one word after the other off a line.
class WordReader {
 public:
  explicit WordReader(std::string_view line) : m_line(line) {}

  /// False at the end of the line, or where a comment starts.
  bool Next(std::string& word) {
    while (!IsAtEnd() && IsBlank(m_line[m_at]))
      ++m_at;
    if (IsAtEnd() || m_line[m_at] == '#') return false;
    word.clear();
    for (bool isAfterLetter = false; !IsAtEnd() && !IsBlank(m_line[m_at]);) {
      const char c = m_line[m_at++];
      const bool isQuote = c == '"' || (c == '\'' && !isAfterLetter);
      isAfterLetter = !isQuote && IsLetter(c);
      if (isQuote && c == '\'') {
        ReadSingleQuoted(word);
      } else if (isQuote) {
        ReadDoubleQuoted(word);
      } else if (c == '\\') {
        word += Escaped();
      } else {
        word += c;
      }
    }
    return true;
  }

 private:
  bool IsAtEnd() const { return m_at >= m_line.size(); }

  char Escaped() {
    if (IsAtEnd()) throw Failure(FailureKind::WrongUsage, "The line ends in a '\\'.");
    return m_line[m_at++];
  }

  void ReadSingleQuoted(std::string& word) {
    const std::size_t end = m_line.find('\'', m_at);
    if (end == std::string_view::npos) RaiseNotClosed('\'');
    word += m_line.substr(m_at, end - m_at);
    m_at = end + 1;
  }

  void ReadDoubleQuoted(std::string& word) {
    while (!IsAtEnd() && m_line[m_at] != '"') {
      const char c = m_line[m_at++];
      const bool escapes = c == '\\' && !IsAtEnd() && (m_line[m_at] == '"' || m_line[m_at] == '\\');
      word += escapes ? m_line[m_at++] : c;
    }
    if (IsAtEnd()) RaiseNotClosed('"');
    ++m_at;
  }

  [[noreturn]] static void RaiseNotClosed(char quote) {
    throw Failure(FailureKind::WrongUsage, std::string("A ") + quote + " is not closed.",
                  "A name with an apostrophe can stand in double quotes.");
  }

  std::string_view m_line;
  std::size_t m_at = 0;
};

}  // namespace

std::vector<std::string> ScriptWords(std::string_view line) {
  std::vector<std::string> words;
  WordReader reader(line);
  for (std::string word; reader.Next(word);)
    words.push_back(word);
  return words;
}

}  // namespace cli
