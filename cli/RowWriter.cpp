#include "cli/RowWriter.h"

#include <algorithm>
#include <utility>

#include "cli/Json.h"
#include "cli/ValueText.h"

namespace cli {
namespace {

/// Cells of one line with a separator between them.
template <typename Items, typename CellText>
std::string JoinCells(const Items& items, char separator, CellText cellText) {
  std::string line;
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (i > 0) line += separator;
    line += cellText(items[i]);
  }
  line += '\n';
  return line;
}

std::string TsvEscaped(const std::string& text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char c : text) {
    switch (c) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\t':
        escaped += "\\t";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\n':
        escaped += "\\n";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

class TsvWriter : public RowWriter {
 public:
  explicit TsvWriter(RowSink sink) : m_sink(std::move(sink)) {}

  void Begin(const std::vector<std::string>& columns) override {
    m_sink(JoinCells(columns, '\t', TsvEscaped));
  }
  void Row(const std::vector<jet::Value>& values) override {
    m_sink(JoinCells(values, '\t', [](const jet::Value& value) {
      return value.IsNull() ? std::string("\\N") : TsvEscaped(ValueText(value));
    }));
  }
  void End() override {}

 private:
  RowSink m_sink;
};

std::string CsvQuoted(const std::string& text) {
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

class CsvWriter : public RowWriter {
 public:
  explicit CsvWriter(RowSink sink) : m_sink(std::move(sink)) {}

  void Begin(const std::vector<std::string>& columns) override { m_sink(JoinCells(columns, ',', CsvQuoted)); }
  void Row(const std::vector<jet::Value>& values) override {
    m_sink(JoinCells(values, ',', [](const jet::Value& value) {
      return value.IsNull() ? std::string() : CsvQuoted(ValueText(value));
    }));
  }
  void End() override {}

 private:
  RowSink m_sink;
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
  void Row(const std::vector<jet::Value>& values) override {
    std::string line = m_first ? "\n  {" : ",\n  {";
    m_first = false;
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (i > 0) line += ", ";
      line += m_members[i] + JsonText(values[i]);
    }
    m_sink(line + "}");
  }
  void End() override { m_sink(m_first ? "]\n" : "\n]\n"); }

 private:
  RowSink m_sink;
  std::vector<std::string> m_members;  ///< for each column its name as JSON, with the colon
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
