#pragma once

#include <functional>
#include <string>

#include "HLIData/Types.h"
#include "cli/Messages.h"
#include "cli/Output.h"

namespace cli {

/// What one run of the program works with: the options that every command knows, where its result goes, and
/// what the command line asks to be done.
///
/// Lives as long as the run. Commands fill in `action` while the command line is read; it is carried out once
/// the whole of it has been understood.
struct Context {
  Context(Output& out, Messages& err) : output(out), messages(err) {}

  Output& output;
  Messages& messages;

  std::string folder;            ///< --folder: where the league's files are
  std::string kindName{"live"};  ///< --kind, in lower case
  bool json = false;             ///< --json
  bool quiet = false;            ///< --quiet

  std::function<void()> action;

  /// The kind that `kindName` names.
  HLIData::DBType Kind() const;
  /// A file of the chosen folder.
  std::string PathInFolder(const std::string& fileName) const;
  /// The league file of the chosen kind in the chosen folder, whether it is there or not. For backups it is
  /// the pattern of their names.
  std::string LeaguePath() const;
};

}  // namespace cli
