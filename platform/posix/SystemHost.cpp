#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "HLDataSrvc/Host.h"
#include "HLIData/Error.h"
#include "platform/Paths.h"
#include "platform/posix/Wildcards.h"

namespace HLDataSrvc {
namespace {

// The file from which the code at `address` was loaded: the program's, or the shared library's. The loader
// itself only knows the name by which it was asked, which may be relative to a folder that is no longer the
// current one.
std::filesystem::path FileOfCode(std::uintptr_t address) {
  std::ifstream mappings("/proc/self/maps");
  std::string line;
  while (std::getline(mappings, line)) {
    std::istringstream fields(line);
    std::uintptr_t first = 0;
    std::uintptr_t last = 0;
    char dash = 0;
    std::string permissions, offset, device, inode, path;
    if (!(fields >> std::hex >> first >> dash >> last) || address < first || address >= last) continue;
    fields >> permissions >> offset >> device >> inode >> std::ws;
    std::getline(fields, path);
    return path;
  }
  return std::filesystem::read_symlink("/proc/self/exe");
}

[[noreturn]] void RaiseUnreadable(const std::string& path, int error) {
  throw HLIData::Error(HLIData::ErrorNumber::PathAccess,
                       path + " cannot be looked up: " + std::system_category().message(error) + ".");
}

bool IsAbsence(int error) {
  return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG;
}

bool IsOrdinaryFile(const std::string& systemPath, const std::string& path) {
  struct stat status {};
  if (stat(systemPath.c_str(), &status) == 0) return S_ISREG(status.st_mode);
  if (!IsAbsence(errno)) RaiseUnreadable(path, errno);
  return false;
}

// The console has no message box. Bytes that would steer a terminal are kept off it.
std::string Printable(const std::string& text) {
  std::string printable;
  for (const char c : text) {
    if (c == '\r') continue;
    const bool isControl = (static_cast<unsigned char>(c) < ' ' && c != '\n' && c != '\t') || c == '\x7F';
    printable += isControl ? '?' : c;
  }
  return printable;
}

class PosixHost final : public Host {
 public:
  std::string ApplicationFolder() const override {
    return FileOfCode(reinterpret_cast<std::uintptr_t>(&SystemHost)).parent_path().string();
  }

  std::string FindFile(const std::string& path) const override {
    const std::filesystem::path systemPath = ToSystemPath(path);
    const std::string pattern = systemPath.filename().string();
    if (pattern.empty()) return {};
    if (pattern.find_first_of("*?") == pattern.npos) {
      return pattern[0] != '.' && IsOrdinaryFile(systemPath.string(), path) ? pattern : std::string();
    }

    const std::string folder = systemPath.has_parent_path() ? systemPath.parent_path().string() : ".";
    DIR* const listing = opendir(folder.c_str());
    if (!listing) {
      if (!IsAbsence(errno)) RaiseUnreadable(path, errno);
      return {};
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> closer(listing, &closedir);
    std::string found;  // the first by name, so that the answer does not depend on the order of the listing
    while (const dirent* entry = readdir(listing)) {
      const std::string name = entry->d_name;
      if (name[0] == '.' || !MatchesWildcards(name, pattern)) continue;
      if (!found.empty() && found <= name) continue;
      if (IsOrdinaryFile(folder + "/" + name, path)) found = name;
    }
    return found;
  }

  void ShowMessage(const std::string& text, const std::string& title) override {
    std::fputs((title + ": " + Printable(text) + "\n").c_str(), stderr);
  }

  std::chrono::year_month_day Today() const override {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return std::chrono::year(local.tm_year + 1900) / (local.tm_mon + 1) / local.tm_mday;
  }
};

}  // namespace

std::shared_ptr<Host> SystemHost() {
  return std::make_shared<PosixHost>();
}

}  // namespace HLDataSrvc
