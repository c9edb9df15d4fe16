#include "tests/support/TestFiles.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <system_error>

namespace jet::test {

TempFolder::TempFolder() {
  std::random_device random;
  std::filesystem::path folder;
  do {
    folder = std::filesystem::temp_directory_path() / ("halcyra-test-" + std::to_string(random()));
  } while (!std::filesystem::create_directory(folder));
  m_path = folder.string();
}

TempFolder::~TempFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(m_path, ignored);
}

std::string ReadWholeText(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::ostringstream content;
  if (file.peek() != std::ifstream::traits_type::eof()) content << file.rdbuf();
  return content.str();
}

std::vector<std::byte> ReadWholeFile(const std::string& path) {
  const std::string text = ReadWholeText(path);
  std::vector<std::byte> bytes(text.size());
  std::transform(text.begin(), text.end(), bytes.begin(), [](char c) { return static_cast<std::byte>(c); });
  return bytes;
}

void WriteWholeFile(const std::string& path, const std::vector<std::byte>& bytes) {
  std::string text(bytes.size(), '\0');
  std::transform(bytes.begin(), bytes.end(), text.begin(), [](std::byte b) { return static_cast<char>(b); });
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!(file << text) || !file.flush()) throw std::runtime_error("cannot write " + path);
}

std::string FixturePath(std::string_view name) {
  return std::string(HALCYRA_TEST_DATA) + "/fixtures/" + std::string(name);
}

std::string CopyFixture(std::string_view name, const TempFolder& folder) {
  const std::string copy = folder.File(name);
  std::filesystem::copy_file(FixturePath(name), copy, std::filesystem::copy_options::overwrite_existing);
  std::filesystem::permissions(copy, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
                               std::filesystem::perm_options::add);
  return copy;
}

}  // namespace jet::test
