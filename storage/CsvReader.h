#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace HLDataSrvc {

/// A CSV file that cannot be taken as it is; `what()` names the file, the line and the reason.
class CsvError : public std::runtime_error {
 public:
  CsvError(const std::string& file, std::size_t line, const std::string& reason)
      : std::runtime_error(file + ", line " + std::to_string(line) + ": " + reason),
        m_file(file),
        m_line(line),
        m_reason(reason) {}

  const std::string& File() const noexcept { return m_file; }
  /// The line on which the record at fault begins, from 1.
  std::size_t Line() const noexcept { return m_line; }
  const std::string& Reason() const noexcept { return m_reason; }

 private:
  std::string m_file;
  std::size_t m_line;
  std::string m_reason;
};

/// Reads the records of a CSV text one after another.
///
/// As RFC 4180 has it: fields are separated by commas and records by line ends (CR LF, or LF alone); a field
/// in double quotes may hold both, and a quote when it is doubled. The text is UTF-8, with or without a byte
/// order mark. Empty lines are skipped. Borrows the stream, which must be one that can be
/// positioned. Raises CsvError.
class CsvReader {
 public:
  /// `file` is the name for messages.
  CsvReader(std::istream& in, std::string file);

  /// The fields of the next record; false at the end of the text.
  bool Next(std::vector<std::string>& fields);
  /// The line on which the record read last begins, from 1.
  std::size_t Line() const { return m_recordLine; }
  /// After a CsvError from Next: skips the rest of the line at fault; Next continues after it.
  void SkipLine();
  /// Raises a CsvError for the record read last.
  [[noreturn]] void Refuse(const std::string& reason) const;

 private:
  /// No column of the league takes as much.
  static constexpr std::size_t kLongestField = std::size_t{64} << 10;
  static constexpr std::size_t kMostFields = 1000;

  enum class FieldEnd { Comma, Line, Text };

  FieldEnd ReadField(std::string& field);
  FieldEnd ReadPlain(std::string& field);
  FieldEnd ReadQuoted(std::string& field);
  void Append(std::string& field, int c) const;
  FieldEnd EndAt(int c);
  void SkipByteOrderMark();
  void CheckText(const std::string& field) const;

  std::istream& m_in;
  std::string m_file;
  std::size_t m_line = 1;
  std::size_t m_recordLine = 1;
  bool m_isInLine = false;  // the field read last was not the last of its line
};

/// The name of a column, however it is written: "First Name", "first_name" and "firstName" give "firstname".
std::string CsvColumnWord(std::string_view name);

/// The truth of "yes", "true", "1", "-1", "no", "false" and "0", in any case; none of other texts.
std::optional<bool> CsvYesNo(std::string_view text);

}  // namespace HLDataSrvc
