#include "storage/CsvReader.h"

#include <string_view>
#include <utility>

#include "jet/Text.h"

namespace HLDataSrvc {
namespace {

constexpr int kEnd = std::char_traits<char>::eof();

}  // namespace

CsvReader::CsvReader(std::istream& in, std::string file) : m_in(in), m_file(std::move(file)) {
  SkipByteOrderMark();
}

void CsvReader::SkipByteOrderMark() {
  const auto start = m_in.tellg();
  for (const int expected : {0xEF, 0xBB, 0xBF}) {
    if (m_in.get() == expected) continue;
    m_in.clear();
    m_in.seekg(start);
    return;
  }
}

bool CsvReader::Next(std::vector<std::string>& fields) {
  while (m_in.peek() != kEnd) {
    m_recordLine = m_line;
    m_isInLine = true;
    fields.clear();
    bool isQuoted = false;
    FieldEnd end = FieldEnd::Comma;
    while (end == FieldEnd::Comma) {
      isQuoted = isQuoted || m_in.peek() == '"';
      if (fields.size() == kMostFields) Refuse("A line has more than 1000 fields.");
      end = ReadField(fields.emplace_back());
    }
    const bool isEmptyLine = fields.size() == 1 && fields[0].empty() && !isQuoted;
    if (!isEmptyLine) return true;
  }
  return false;
}

void CsvReader::SkipLine() {
  if (!std::exchange(m_isInLine, false)) return;
  for (int c = m_in.get(); c != kEnd; c = m_in.get()) {
    if (c != '\n') continue;
    ++m_line;
    return;
  }
}

void CsvReader::Refuse(const std::string& reason) const {
  throw CsvError(m_file, m_recordLine, reason);
}

CsvReader::FieldEnd CsvReader::ReadField(std::string& field) {
  const FieldEnd end = m_in.peek() == '"' ? ReadQuoted(field) : ReadPlain(field);
  CheckText(field);
  return end;
}

void CsvReader::Append(std::string& field, int c) const {
  if (field.size() == kLongestField) Refuse("A field is longer than 64 KiB.");
  field += static_cast<char>(c);
}

CsvReader::FieldEnd CsvReader::ReadPlain(std::string& field) {
  for (int c = m_in.get();; c = m_in.get()) {
    if (c == ',' || c == '\n' || c == '\r' || c == kEnd) return EndAt(c);
    if (c == '"') Refuse("A quote stands inside a field that does not begin with one.");
    Append(field, c);
  }
}

CsvReader::FieldEnd CsvReader::ReadQuoted(std::string& field) {
  m_in.get();
  for (int c = m_in.get();; c = m_in.get()) {
    if (c == kEnd) Refuse("A quoted field is not closed.");
    if (c == '"') {
      if (m_in.peek() != '"') return EndAt(m_in.get());
      m_in.get();
    }
    if (c == '\n') ++m_line;
    Append(field, c);
  }
}

CsvReader::FieldEnd CsvReader::EndAt(int c) {
  if (c == ',') return FieldEnd::Comma;
  if (c == kEnd) {
    m_isInLine = false;
    return FieldEnd::Text;
  }
  if (c == '\r' && m_in.peek() == '\n') c = m_in.get();
  if (c == '\r') Refuse("A carriage return is not followed by a line feed.");
  if (c != '\n') Refuse("A quoted field is followed by more text.");
  ++m_line;
  m_isInLine = false;
  return FieldEnd::Line;
}

void CsvReader::CheckText(const std::string& field) const {
  if (!jet::IsUtf8(field)) Refuse("The text is not UTF-8.");
  if (field.find('\0') != field.npos) Refuse("The text holds a null character.");
}

std::string CsvColumnWord(std::string_view name) {
  std::string word = jet::FoldCase(name);
  std::erase_if(word, [](char c) { return c == ' ' || c == '\t' || c == '_' || c == '-'; });
  return word;
}

std::optional<bool> CsvYesNo(std::string_view text) {
  const auto is = [text](const char* word) { return jet::SameWord(text, word); };
  if (is("yes") || is("true") || is("1") || is("-1")) return true;
  if (is("no") || is("false") || is("0")) return false;
  return std::nullopt;
}

}  // namespace HLDataSrvc
