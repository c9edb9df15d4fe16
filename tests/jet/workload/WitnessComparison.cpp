#include "tests/jet/workload/WitnessComparison.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tests/support/Witnesses.h"

namespace jet::test {
namespace {

constexpr std::string_view kMdbExport = "mdb-export";
constexpr std::string_view kMdbReader = "mdb-reader";

/// Rows of a reader: values as text by column name.
using ReaderRow = std::map<std::string, std::string>;

bool IsComparable(const ColumnSpec& column) {
  switch (column.type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Text:
    case ColumnType::Memo:
      return true;
    default:
      return false;
  }
}

std::string PrintedForm(const Value& value) {
  if (value.IsNull()) return "\\N";
  if (const auto* flag = value.As<bool>()) return *flag ? "1" : "0";
  return value.ToText();
}

std::string RowText(const ModelTable& table, const ReaderRow& row) {
  std::string text;
  for (const ColumnSpec& column : table.info.columns) {
    if (IsComparable(column)) text += column.name + "=" + row.at(column.name) + ";";
  }
  return text;
}

/// The text as mdb-export shows it: with two question marks for each character beyond U+FFFF, and an empty
/// one like Null.
std::string AsMdbExportShows(const std::string& text) {
  constexpr unsigned char kFirstOfFour = 0xF0;
  if (text.empty()) return "\\N";
  std::string shown;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (static_cast<unsigned char>(text[i]) < kFirstOfFour) {
      shown.push_back(text[i]);
    } else {
      shown += "??";
      i += 3;
    }
  }
  return shown;
}

std::string Compare(const ModelTable& table, const std::vector<ReaderRow>& rows, std::string_view reader) {
  std::vector<std::string> expected;
  for (const auto& [key, row] : table.rows) {
    ReaderRow printed;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string text = PrintedForm(row[i]);
      printed[table.info.columns[i].name] = reader == kMdbExport ? AsMdbExportShows(text) : text;
    }
    expected.push_back(RowText(table, printed));
  }
  std::vector<std::string> actual;
  for (const ReaderRow& row : rows)
    actual.push_back(RowText(table, row));
  std::sort(expected.begin(), expected.end());
  std::sort(actual.begin(), actual.end());
  if (expected == actual) return {};
  std::string text = std::string(reader) + " reads " + std::to_string(actual.size()) + " rows of " +
                     table.info.name + ", expected " + std::to_string(expected.size()) + "\n";
  const auto difference = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
  if (difference.first != actual.end()) text += "  read:     " + difference.first->substr(0, 400) + "\n";
  if (difference.second != expected.end()) text += "  expected: " + difference.second->substr(0, 400) + "\n";
  return text;
}

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  std::size_t from = 0;
  for (std::size_t at; (at = text.find(separator, from)) != std::string::npos; from = at + 1) {
    pieces.push_back(text.substr(from, at - from));
  }
  pieces.push_back(text.substr(from));
  return pieces;
}

std::string Digits(double number, int digits) {
  char text[40];
  std::snprintf(text, sizeof text, "%.*g", digits, number);
  return text;
}

// Digits that distinguish two values of a type, as far as a JSON number goes.
constexpr int kDoubleDigits = 17;
constexpr int kSingleDigits = 9;
constexpr int kExactDigits = 15;

/// A value in a form that CheckerForm gives too.
std::string ModelForm(const ColumnSpec& column, const Value& value) {
  if (value.IsNull()) return "Null";
  switch (column.type) {
    case ColumnType::Currency:
    case ColumnType::Decimal:
      return Digits(std::strtod(value.ToText().c_str(), nullptr), kExactDigits);
    case ColumnType::Double:
      return Digits(*value.As<double>(), kDoubleDigits);
    case ColumnType::Single:
      return Digits(static_cast<double>(*value.As<float>()), kSingleDigits);
    case ColumnType::Binary:
    case ColumnType::Ole:
      return ExactText(value).substr(1);
    default:
      return value.ToText();
  }
}

std::string CheckerForm(const ColumnSpec& column, const nlohmann::json& value) {
  if (value.is_null()) return "Null";
  if (value.is_boolean()) return value.get<bool>() ? "True" : "False";
  switch (column.type) {
    case ColumnType::Currency:
    case ColumnType::Decimal:
      return Digits(value.get<double>(), kExactDigits);
    case ColumnType::Double:
      return Digits(value.get<double>(), kDoubleDigits);
    case ColumnType::Single:
      return Digits(static_cast<double>(static_cast<float>(value.get<double>())), kSingleDigits);
    case ColumnType::DateTime: {
      std::string text = value.get<std::string>();
      const auto midnight = text.find("T00:00:00");
      if (midnight != std::string::npos) return text.substr(0, midnight);
      std::replace(text.begin(), text.end(), 'T', ' ');
      return text;
    }
    default:
      return value.is_string() ? value.get<std::string>() : value.dump();
  }
}

std::string JsonText(const nlohmann::json& value) {
  if (value.is_null()) return "\\N";
  if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
  return value.is_string() ? value.get<std::string>() : value.dump();
}

}  // namespace

std::string CompareWithIndependentChecker(Model& model, const std::string& path) {
  for (const std::string& name : model.TableNames()) {
    const ModelTable& table = model.Table(name);
    std::vector<std::string> expected;
    for (const auto& [key, row] : table.rows) {
      std::string& text = expected.emplace_back();
      for (std::size_t i = 0; i < row.size(); ++i)
        text += ModelForm(table.info.columns[i], row[i]) + ";";
    }
    std::vector<std::string> actual;
    std::vector<std::string> lines = Split(IndependentRows(path, name), '\n');
    lines.pop_back();
    for (const std::string& line : lines) {
      const auto values = nlohmann::json::parse(line, nullptr, false);
      if (values.is_discarded()) return "the checker prints " + line.substr(0, 400);
      std::string& text = actual.emplace_back();
      for (const ColumnSpec& column : table.info.columns)
        text += CheckerForm(column, values.at(column.name)) + ";";
    }
    std::sort(expected.begin(), expected.end());
    std::sort(actual.begin(), actual.end());
    if (expected == actual) continue;
    const auto difference = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    return "the checker reads " + std::to_string(actual.size()) + " rows of " + name + ", expected " +
           std::to_string(expected.size()) + "\n  " +
           (difference.first == actual.end() ? "" : difference.first->substr(0, 600)) + "\n  " +
           (difference.second == expected.end() ? "" : difference.second->substr(0, 600));
  }
  return {};
}

std::string CompareWithMdbExport(Model& model, const std::string& path) {
  if (!HasMdbExport()) return {};
  std::string differences;
  for (const std::string& name : model.TableNames()) {
    std::vector<std::string> lines = Split(MdbExport(path, name), kMdbExportRowEnd);
    lines.pop_back();  // after the last end of a row
    if (lines.empty()) return "mdb-export prints nothing of " + name;
    const std::vector<std::string> columns = Split(lines.front(), kMdbExportFieldEnd);
    std::vector<ReaderRow> rows;
    for (std::size_t i = 1; i < lines.size(); ++i) {
      const std::vector<std::string> fields = Split(lines[i], kMdbExportFieldEnd);
      if (fields.size() != columns.size())
        return "mdb-export: " + name + " row of " + std::to_string(fields.size());
      ReaderRow& row = rows.emplace_back();
      for (std::size_t c = 0; c < columns.size(); ++c)
        row[columns[c]] = AsMdbExportShows(fields[c]);
    }
    differences += Compare(model.Table(name), rows, kMdbExport);
  }
  return differences;
}

std::string CompareWithMdbReader(Model& model, const std::string& path, const std::string& password) {
  if (!HasMdbReader()) return {};
  const auto tables = nlohmann::json::parse(MdbReaderJson(path, password), nullptr, false);
  if (tables.is_discarded()) return "mdb-reader: " + MdbReaderJson(path, password).substr(0, 2000);
  std::string differences;
  for (const std::string& name : model.TableNames()) {
    if (!tables.contains(name)) return "mdb-reader does not see " + name;
    const auto columns = tables[name]["columns"].get<std::vector<std::string>>();
    std::vector<ReaderRow> rows;
    for (const auto& values : tables[name]["rows"]) {
      ReaderRow& row = rows.emplace_back();
      for (std::size_t c = 0; c < columns.size(); ++c)
        row[columns[c]] = JsonText(values[c]);
    }
    differences += Compare(model.Table(name), rows, kMdbReader);
  }
  return differences;
}

}  // namespace jet::test
