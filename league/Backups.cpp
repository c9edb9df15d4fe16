#include "HLLeague/Backups.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "HLLeague/Failure.h"
#include "platform/Paths.h"
#include "storage/HLServiceUtils.h"

namespace HLLeague {
namespace {

std::string FileNameAt(HLIData::DBType kind, std::time_t time) {
  const std::tm local = *std::localtime(&time);
  const auto text = [&](const char* format) {
    std::array<char, 16> buffer{};
    return std::string(buffer.data(), std::strftime(buffer.data(), buffer.size(), format, &local));
  };
  return HLDataSrvc::HLServiceUtils::GetDatabaseFileName(kind, text("%Y-%m-%d"), text("%H-%M-%S"));
}

std::string NameOf(const std::filesystem::path& path) {
  const std::u8string name = path.filename().u8string();
  return {name.begin(), name.end()};
}

std::string PathIn(const std::string& folder, const std::string& name) {
  return folder + "\\" + name;
}

}  // namespace

std::string NewFileName(HLIData::DBType kind) {
  return FileNameAt(kind, std::time(nullptr));
}

std::string NewBackupPath(const std::string& folder) {
  for (std::time_t time = std::time(nullptr);; ++time) {
    std::string path = PathIn(folder, FileNameAt(HLIData::DBType::Backup, time));
    std::error_code unknown;
    if (!std::filesystem::exists(HLDataSrvc::ToSystemPath(path), unknown)) return path;
  }
}

std::vector<Backup> BackupsIn(const std::string& folder) {
  const std::string pattern =
      HLDataSrvc::HLServiceUtils::GetDatabaseFileName(HLIData::DBType::Backup, "", "");
  const std::size_t star = pattern.find('*');
  const std::string_view before = std::string_view(pattern).substr(0, star);
  const std::string_view after = std::string_view(pattern).substr(star + 1);
  std::vector<Backup> backups;
  std::error_code error;
  std::filesystem::directory_iterator entry(HLDataSrvc::ToSystemPath(folder), error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    const std::string name = NameOf(entry->path());
    if (name.size() < before.size() + after.size() || !name.starts_with(before) || !name.ends_with(after))
      continue;
    std::error_code unknown;
    const std::uintmax_t bytes = entry->file_size(unknown);
    if (!unknown) backups.push_back({name, PathIn(folder, name), bytes});
  }
  if (error) {
    throw Failure(FailureKind::CannotOpen,
                  "The folder " + folder + " cannot be read: " + error.message() + ".");
  }
  std::sort(backups.begin(), backups.end(), [](const Backup& a, const Backup& b) { return a.name > b.name; });
  return backups;
}

}  // namespace HLLeague
