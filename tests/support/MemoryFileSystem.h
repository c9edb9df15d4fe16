#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "jet/file/File.h"

namespace jet::test {

/// Files in memory, with the names and the locks of real ones. There are no folders: every folder exists.
///
/// Open files stay usable when the file system is dropped first.
class MemoryFileSystem final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) override;
  bool Exists(const std::string& name) override;
  void Remove(const std::string& name) override;
  void Replace(const std::string& from, const std::string& to, HeldFiles held) override;
  void RemoveLeftOvers(const std::string& name) override;
  /// Whether a file is a temporary one that no process has open.
  bool IsLeftOver(const std::string& name) const;

  /// Makes or overwrites a file, open or not.
  void Put(const std::string& name, std::vector<std::byte> bytes);
  /// The bytes of a file as they are now; raises FileNotFound.
  const std::vector<std::byte>& Get(const std::string& name) const;

  /// A file and who holds it.
  struct Contents {
    std::vector<std::byte> bytes;
    int readers = 0;       ///< shared, reading only
    bool isAlone = false;  ///< one holds it as its only writer
  };

 private:
  static std::string Key(const std::string& name);

  std::map<std::string, std::shared_ptr<Contents>> m_files;
};

}  // namespace jet::test
