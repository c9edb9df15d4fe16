#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace jet::test {

/// A new folder in the system's folder for temporary files; removed with all it holds at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& Path() const { return m_path; }
  /// Full name of a file in the folder.
  std::string File(std::string_view name) const { return m_path + "/" + std::string(name); }

 private:
  std::string m_path;
};

/// Raises std::runtime_error, naming the file, when it cannot be read.
std::vector<std::byte> ReadWholeFile(const std::string& path);
std::string ReadWholeText(const std::string& path);
void WriteWholeFile(const std::string& path, const std::vector<std::byte>& bytes);

/// Full name of a database of tests/data/fixtures. Not to be opened for writing: copy it first.
std::string FixturePath(std::string_view name);
/// Copies a fixture into a folder; the full name of the copy, which can be written to.
std::string CopyFixture(std::string_view name, const TempFolder& folder);

/// Password of the fixtures, and the item that gives it to DBEngine::OpenDatabase.
inline constexpr const char* kFixturePassword = "talwep83rn";
inline constexpr const char* kFixtureConnect = ";pwd=talwep83rn";

}  // namespace jet::test
