#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "HLDataSrvc/Export.h"
#include "HLIData/Visibility.h"

namespace HLDataSrvc {

/// What the service asks of the program and the system around it. A client may supply its own, usually one
/// that hands most questions on to SystemHost.
///
/// Text is UTF-8. Folders in paths are separated by `\` on every system; implementations turn it into the
/// system's own separator when they ask the system, and take that too.
class HLIDATA_TYPE Host {
 public:
  virtual ~Host() = default;

  /// The folder from which the component was loaded, without a separator at the end.
  virtual std::string ApplicationFolder() const = 0;

  /// The name, without folder, of a file that matches a path, or an empty text when none does. In the path's
  /// last part `*` stands for any run of characters and `?` for one. Ordinary and read-only files match;
  /// folders, hidden files and special files do not. Raises HLIData::Error (PathAccess) when the system does
  /// not let us look.
  virtual std::string FindFile(const std::string& path) const = 0;

  /// Shows a modal message box with an OK button only. Lines of `text` are separated by "\r\n".
  virtual void ShowMessage(const std::string& text, const std::string& title) = 0;

  /// Today's date by the local calendar.
  virtual std::chrono::year_month_day Today() const = 0;
};

/// The machine's own host: the component's folder, the system's files, a message box on Windows and standard
/// error elsewhere.
HLDATASRVC_API std::shared_ptr<Host> SystemHost();

}  // namespace HLDataSrvc
