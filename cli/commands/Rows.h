#pragma once

#include <string>

#include "cli/commands/Command.h"
#include "cli/output/RowWriter.h"
#include "jet/dao/Database.h"

namespace cli {

/// The option --format of the commands whose result is rows; --json stands for --format json.
class FormatOption {
 public:
  void AddTo(Command& command);
  RowFormat Format(const Context& context) const;

 private:
  std::string m_format = "tsv";
};

/// Runs a select statement and writes its rows in the format asked for; with `explain` it notes how they are
/// found. Raises what the engine raises, an error of damage with `source`, where the rows come from, as
/// context; what was written until then is not whole.
void WriteRows(Context& context, jet::Database& database, const std::string& statement,
               const FormatOption& format, const std::string& source, bool explain = false);

/// A name of a table or column as select statements take it.
std::string Bracketed(const std::string& name);

}  // namespace cli
