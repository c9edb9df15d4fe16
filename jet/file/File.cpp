#include "jet/file/File.h"

#include <array>
#include <random>
#include <utility>

#include "jet/Error.h"
#include "jet/file/FileNames.h"

namespace jet {

void FileSystem::Rename(const std::string& from, const std::string& to, HeldFiles held) {
  if (Exists(to)) throw Error(ErrorNumber::ObjectExists, "The file '" + to + "' exists already.");
  Replace(from, to, std::move(held));
}

std::string TemporaryName(FileSystem& files, const std::string& target) {
  constexpr std::size_t kDigits = 16;
  constexpr std::array<char, 17> kHex{"0123456789abcdef"};
  const std::string folder = file_names::Folder(files.RealName(target));
  std::random_device device;
  std::string name = folder + file_names::kTemporaryPrefix;
  for (std::size_t i = 0; i < kDigits; ++i)
    name += kHex.at(device() % 16);
  files.RemoveLeftOvers(name);
  return name;
}

void WriteFileAtomically(FileSystem& files, const std::string& target, std::span<const std::byte> bytes) {
  const std::string name = TemporaryName(files, target);
  auto file = files.Open(name, {.exclusive = true, .readOnly = false, .create = true, .like = target});
  try {
    file->Write(0, bytes);
    file->Sync();
    files.Replace(name, target, {.from = std::move(file)});
  } catch (const Error& error) {
    file.reset();
    try {
      if (!error.IsUncertain()) files.Remove(name);
    } catch (const Error&) {
      // The next file that is made here removes it.
    }
    throw;
  }
}

}  // namespace jet
