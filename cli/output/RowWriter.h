#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/output/Output.h"
#include "jet/Value.h"

namespace cli {

/// Writes the rows of a result, one after the other, in one of the formats of `dump` and `query`.
///
/// Called in the order Begin, for each row its cells and EndRow, End; nothing of the result is kept. Raises
/// Failure when the output does not take it.
class RowWriter {
 public:
  virtual ~RowWriter() = default;

  virtual void Begin(const std::vector<std::string>& columns) = 0;
  /// The next cell of a row; there are as many as columns.
  virtual void Cell(const jet::Value& value) = 0;
  virtual void Cell(std::string_view text) = 0;
  virtual void EndRow() = 0;
  virtual void End() = 0;

  /// A whole row.
  void Row(const std::vector<jet::Value>& values) {
    for (const jet::Value& value : values)
      Cell(value);
    EndRow();
  }
};

enum class RowFormat {
  Tsv,        ///< a header row; Null as \N; backslash, tab and line ends in text escaped
  Csv,        ///< a header row; Null as nothing, an empty text as ""
  JsonArray,  ///< an array with an object a row
};

/// Takes pieces of a result, one behind the other.
using RowSink = std::function<void(std::string_view)>;

std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, RowSink sink);
/// A writer onto `output`, which must outlive it.
std::unique_ptr<RowWriter> MakeRowWriter(RowFormat format, Output& output);

}  // namespace cli
