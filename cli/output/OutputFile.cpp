#include "cli/output/OutputFile.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <span>
#include <system_error>

#include "HLLeague/Failure.h"
#include "jet/Error.h"
#include "jet/file/File.h"
#include "platform/Paths.h"

namespace cli {

using namespace HLLeague;

namespace {

/// Writes to what is no plain file, such as a device: it stays what it is.
void WriteInto(const std::filesystem::path& target, const std::string& path, std::string_view text) {
  errno = 0;
  std::ofstream file(target, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  file.close();
  if (file) return;
  const std::string reason = std::generic_category().message(errno == 0 ? EIO : errno);
  throw Failure(FailureKind::SystemFailed, "The file " + path + " could not be written: " + reason + ".");
}

}  // namespace

void WriteFileAtomically(const std::string& path, std::string_view text) {
  const auto target = HLDataSrvc::ToSystemPath(path);
  std::error_code error;
  const auto kind = std::filesystem::status(target, error).type();
  if (kind != std::filesystem::file_type::regular && kind != std::filesystem::file_type::not_found &&
      kind != std::filesystem::file_type::none)
    return WriteInto(target, path, text);
  try {
    jet::WriteFileAtomically(*jet::SystemFiles(), path, std::as_bytes(std::span(text)));
  } catch (const jet::Error& failed) {
    throw Failure(FailureKind::SystemFailed, "The file " + path + " could not be written: " + failed.what());
  }
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
