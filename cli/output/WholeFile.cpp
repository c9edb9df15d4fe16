#include "cli/output/WholeFile.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "cli/commands/ExitCode.h"
#include "platform/Paths.h"

namespace cli {

using namespace HLLeague;

void WriteWholeFile(const std::string& path, std::string_view text) {
  const auto target = HLDataSrvc::ToSystemPath(path);
  const auto made = HLDataSrvc::ToSystemPath(path + ".being-made");
  std::error_code error;
  errno = 0;
  {
    std::ofstream file(made, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (!file) error.assign(errno == 0 ? EIO : errno, std::generic_category());
  }
  if (!error) std::filesystem::rename(made, target, error);
  if (!error) return;
  const std::string reason = error.message();
  std::filesystem::remove(made, error);
  throw Failure(FailureKind::SystemFailed, "The file " + path + " could not be written: " + reason + ".");
}

bool IsThere(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(HLDataSrvc::ToSystemPath(path), error));
}

std::string BeginningOf(const std::string& path, std::size_t length) {
  std::ifstream file(HLDataSrvc::ToSystemPath(path), std::ios::binary);
  std::string text(length, '\0');
  file.read(text.data(), static_cast<std::streamsize>(length));
  text.resize(static_cast<std::size_t>(file.gcount()));
  return text;
}

}  // namespace cli
