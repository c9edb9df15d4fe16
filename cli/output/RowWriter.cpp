#include "cli/output/RowWriter.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "cli/output/Json.h"
#include "cli/output/ValueText.h"

namespace cli {
namespace {

constexpr std::size_t kPieceBytes = std::size_t{64} << 10;  // handed to the sink at a time

/// Lines of cells with a separator between them.
class LineWriter : public RowWriter {
 public:
  LineWriter(RowSink sink, char separator, std::string_view null)
      : m_sink(std::move(sink)), m_separator(separator), m_null(null) {}

  void Begin(const std::vector<std::string>& columns) override {
    for (const std::string& column : columns) {
      AppendText(column, m_piece);
      m_piece += m_separator;
    }
    EndLine();
  }
  void Cell(const jet::Value& value) override {
    AppendValue(value);
    m_piece += m_separator;
  }
  void Cell(std::string_view text) override {
    AppendText(text, m_piece);
    m_piece += m_separator;
  }
  void EndRow() override { EndLine(); }
  void End() override { HandOver(); }

 private:
  /// Appends a text so that it stays one cell.
  virtual void AppendText(std::string_view text, std::string& line) const = 0;

  void AppendValue(const jet::Value& value) {
    if (value.IsNull()) {
      m_piece += m_null;
    } else if (const auto* text = value.As<std::string>()) {
      AppendText(*text, m_piece);
    } else if (const auto* number = value.As<std::int32_t>()) {
      std::array<char, 12> digits{};
      const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *number).ptr;
      m_piece.append(digits.data(), end);
    } else {
      AppendText(ValueText(value), m_piece);
    }
  }
  void EndLine() {
    m_piece.back() = '\n';  // the last separator
    if (m_piece.size() >= kPieceBytes) HandOver();
  }
  void HandOver() {
    m_sink(m_piece);
    m_piece.clear();
  }

  RowSink m_sink;
  char m_separator;
  std::string_view m_null;
  std::string m_piece;
};

class TsvWriter : public LineWriter {
 public:
  explicit TsvWriter(RowSink sink) : LineWriter(std::move(sink), '\t', "\\N") {}

 private:
  void AppendText(std::string_view text, std::string& line) const override {
    for (const char c : text) {
      switch (c) {
        case '\\':
          line += "\\\\";
          break;
        case '\t':
          line += "\\t";
          break;
        case '\r':
          line += "\\r";
          break;
        case '\n':
          line += "\\n";
          break;
        default:
          line += c;
      }
    }
  }
};

class CsvWriter : public LineWriter {
 public:
  explicit CsvWriter(RowSink sink) : LineWriter(std::move(sink), ',', "") {}

 private:
  void AppendText(std::string_view text, std::string& line) const override {
    const bool isPlain = !text.empty() && std::none_of(text.begin(), text.end(), [](char c) {
      return c == ',' || c == '"' || c == '\r' || c == '\n';
    });
    if (isPlain) {
      line += text;
      return;
    }
    line += '"';
    for (const char c : text) {
      if (c == '"') line += '"';
      line += c;
    }
    line += '"';
  }
};

class JsonWriter : public RowWriter {
 public:
  explicit JsonWriter(RowSink sink) : m_sink(std::move(sink)) {}

  void Begin(const std::vector<std::string>& columns) override {
    // A join can give two columns of one name; an object cannot have two members of one name.
    std::vector<std::string> names;
    for (const std::string& column : columns) {
      std::string name = column;
      for (int copy = 2; std::find(names.begin(), names.end(), name) != names.end(); ++copy) {
        name = column + " " + std::to_string(copy);
      }
      names.push_back(name);
      m_members.push_back(JsonText(std::string_view(name)) + ": ");
    }
    m_sink("[");
  }
  void Cell(const jet::Value& value) override { Append(JsonText(value)); }
  void Cell(std::string_view text) override { Append(JsonText(text)); }
  void EndRow() override {
    m_sink((m_first ? "\n  {" : ",\n  {") + m_line + "}");
    m_first = false;
    m_line.clear();
    m_next = 0;
  }
  void End() override { m_sink(m_first ? "]\n" : "\n]\n"); }

 private:
  void Append(const std::string& json) {
    if (m_next > 0) m_line += ", ";
    m_line += m_members[m_next++] + json;
  }

  RowSink m_sink;
  std::vector<std::string> m_members;  ///< for each column its name as JSON, with the colon
  std::string m_line;                  ///< the row's members so far
  std::size_t m_next = 0;              ///< member of the row
  bool m_first = true;
};

}  // namespace

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, RowSink sink) {
  switch (format) {
    case RowFormat::Csv:
      return std::make_unique<CsvWriter>(std::move(sink));
    case RowFormat::JsonArray:
      return std::make_unique<JsonWriter>(std::move(sink));
    case RowFormat::Tsv:
      break;
  }
  return std::make_unique<TsvWriter>(std::move(sink));
}

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& output) {
  return MakeRowWriter(format, [&output](std::string_view text) { output.Write(text); });
}

}  // namespace cli
