#include "league/TextTable.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "league/Utf8.h"

namespace HLLeague {

std::vector<std::string> TextTable::Lines() const {
  std::vector<std::string> titles;
  std::vector<std::size_t> widths;
  for (const Column& column : m_columns) {
    titles.push_back(column.title);
    widths.push_back(DisplayWidth(column.title));
  }
  for (const auto& row : m_rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], DisplayWidth(row[i]));
  }

  std::vector<std::string> lines;
  const auto addRow = [&](const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      const std::string padding(widths[i] - DisplayWidth(cells[i]), ' ');
      if (i > 0) line += "  ";
      line += m_columns[i].align == Align::Right ? padding + cells[i] : cells[i] + padding;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  };
  addRow(titles);
  for (const auto& row : m_rows)
    addRow(row);
  return lines;
}

}  // namespace HLLeague
