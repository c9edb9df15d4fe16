#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

namespace HLDataSrvc {

/// A path as the rest of the component writes it (UTF-8, folders separated by `\`) in the form that the
/// system is asked with. The last step before the system: texts that users see keep the path as it was given.
inline std::filesystem::path ToSystemPath(const std::string& path) {
  std::u8string text(path.begin(), path.end());
  std::replace(text.begin(), text.end(), u8'\\', u8'/');
  return std::filesystem::path(text);
}

}  // namespace HLDataSrvc
