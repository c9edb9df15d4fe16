#include "cli/TextTable.h"

#include <algorithm>
#include <cstddef>

namespace cli {
namespace {

/// Code points of a UTF-8 text: what a cell takes on the screen, near enough for names of tables and columns.
std::size_t Width(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

}  // namespace

void TextTable::Print(Output& output) const {
  std::vector<std::string> titles;
  std::vector<std::size_t> widths;
  for (const Column& column : m_columns) {
    titles.push_back(column.title);
    widths.push_back(Width(column.title));
  }
  for (const auto& row : m_rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], Width(row[i]));
  }

  const auto printRow = [&](const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(widths[i] - Width(cells[i]), ' ');
      if (i > 0) line += "  ";
      line += m_columns[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    output.Line(line);
  };
  printRow(titles);
  for (const auto& row : m_rows)
    printRow(row);
}

}  // namespace cli
