#include "tests/support/TestFiles.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
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
  return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

std::vector<std::byte> ReadWholeFile(const std::string& path) {
  const std::string text = ReadWholeText(path);
  std::vector<std::byte> bytes(text.size());
  for (std::size_t i = 0; i < text.size(); ++i)
    bytes[i] = static_cast<std::byte>(text[i]);
  return bytes;
}

void WriteWholeFile(const std::string& path, const std::vector<std::byte>& bytes) {
  std::string text(bytes.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i)
    text[i] = static_cast<char>(bytes[i]);
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
