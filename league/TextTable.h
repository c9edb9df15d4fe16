#pragma once

#include <string>
#include <vector>

namespace HLLeague {

/// A small table for people: a header, rows, columns as wide as their widest cell. Holds all of its cells.
class TextTable {
 public:
  enum class Align { Left, Right };
  struct Column {
    std::string title;
    Align align = Align::Left;
  };

  explicit TextTable(std::vector<Column> columns) : m_columns(std::move(columns)) {}

  /// As many cells as there are columns.
  void Add(std::vector<std::string> cells) { m_rows.push_back(std::move(cells)); }
  /// The header, then the rows, each without line end and without blanks at its end.
  std::vector<std::string> Lines() const;

 private:
  std::vector<Column> m_columns;
  std::vector<std::vector<std::string>> m_rows;
};

}  // namespace HLLeague
