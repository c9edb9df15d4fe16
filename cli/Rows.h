#pragma once

#include <string>

#include <CLI/CLI.hpp>

#include "cli/Context.h"
#include "cli/RowWriter.h"
#include "jet/dao/Recordset.h"

namespace cli {

/// The option --format of the commands whose result is rows; --json stands for --format json.
class FormatOption {
 public:
  void AddTo(CLI::App& command);
  RowFormat Format(const Context& context) const;

 private:
  std::string m_format = "tsv";
};

/// Writes the rows of a recordset, from the current one to the last. Raises what reading them raises, with
/// `source`, where the rows come from, as context; what was written until then is not whole.
void WriteRows(jet::Recordset& rows, RowWriter& writer, const std::string& source);

/// A name of a table or column as select statements take it.
std::string Bracketed(const std::string& name);

}  // namespace cli
