#include "tests/support/MemoryFileSystem.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"
#include "jet/file/FileNames.h"

namespace jet::test {
namespace {

class MemoryFile final : public File {
 public:
  MemoryFile(std::shared_ptr<MemoryFileSystem::Contents> contents, std::string name, bool readOnly,
             bool alone)
      : m_contents(std::move(contents)), m_name(std::move(name)), m_readOnly(readOnly), m_alone(alone) {
    if (m_alone) {
      m_contents->isAlone = true;
    } else {
      ++m_contents->readers;
    }
  }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  ~MemoryFile() override {
    if (m_alone) {
      m_contents->isAlone = false;
    } else {
      --m_contents->readers;
    }
  }

  std::uint64_t Size() const override { return m_contents->bytes.size(); }

  void Read(std::uint64_t offset, std::span<std::byte> into) override {
    const auto& bytes = m_contents->bytes;
    if (offset > bytes.size() || into.size() > bytes.size() - offset) {
      throw Error(ErrorNumber::ReadFailed, "Could not read '" + m_name + "': it ends too early.");
    }
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), into.size(), into.begin());
  }

  void Write(std::uint64_t offset, std::span<const std::byte> from) override {
    RefuseIfReadOnly();
    auto& bytes = m_contents->bytes;
    if (offset + from.size() > bytes.size()) bytes.resize(offset + from.size());
    std::copy(from.begin(), from.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  }

  void Resize(std::uint64_t size) override {
    RefuseIfReadOnly();
    m_contents->bytes.resize(size);
  }

  void Sync() override {}

 private:
  void RefuseIfReadOnly() const {
    if (m_readOnly)
      throw Error(ErrorNumber::PermissionDenied, "'" + m_name + "' was opened for reading only.");
  }

  std::shared_ptr<MemoryFileSystem::Contents> m_contents;
  std::string m_name;
  bool m_readOnly;
  bool m_alone;
};

}  // namespace

std::unique_ptr<File> MemoryFileSystem::Open(const std::string& name, const OpenMode& mode) {
  file_names::Check(name);
  const auto found = m_files.find(Key(name));
  if (mode.create && found != m_files.end()) {
    throw Error(ErrorNumber::ObjectExists, "The file '" + name + "' exists already.");
  }
  if (!mode.create && found == m_files.end()) {
    throw Error(ErrorNumber::FileNotFound, "Could not find the file '" + name + "'.");
  }
  const auto contents = mode.create ? std::make_shared<Contents>() : found->second;
  const bool alone = mode.exclusive || !mode.readOnly;
  if (contents->isAlone || (alone && contents->readers > 0)) {
    throw Error(
        contents->isAlone && mode.exclusive ? ErrorNumber::FileHeldExclusively : ErrorNumber::FileInUse,
        "'" + name + "' is in use by someone else.");
  }
  auto file = std::make_unique<MemoryFile>(contents, name, mode.readOnly, alone);
  if (mode.create) m_files[Key(name)] = contents;
  return file;
}

bool MemoryFileSystem::Exists(const std::string& name) {
  return m_files.contains(Key(name));
}

void MemoryFileSystem::Remove(const std::string& name) {
  m_files.erase(Key(name));
}

void MemoryFileSystem::Replace(const std::string& from, const std::string& to, HeldFiles /*held*/) {
  const auto found = m_files.find(Key(from));
  if (found == m_files.end())
    throw Error(ErrorNumber::FileNotFound, "Could not find the file '" + from + "'.");
  const auto contents = found->second;
  m_files.erase(found);
  m_files[Key(to)] = contents;
}

bool MemoryFileSystem::IsLeftOver(const std::string& name) const {
  const auto found = m_files.find(Key(name));
  return found != m_files.end() && file_names::IsTemporary(name) && !found->second->isAlone &&
         found->second->readers == 0;
}

void MemoryFileSystem::RemoveLeftOvers(const std::string& /*name*/) {
  std::erase_if(m_files, [this](const auto& file) { return IsLeftOver(file.first); });
}

void MemoryFileSystem::Put(const std::string& name, std::vector<std::byte> bytes) {
  auto& contents = m_files[Key(name)];
  if (!contents) contents = std::make_shared<Contents>();
  contents->bytes = std::move(bytes);
}

const std::vector<std::byte>& MemoryFileSystem::Get(const std::string& name) const {
  const auto found = m_files.find(Key(name));
  if (found == m_files.end())
    throw Error(ErrorNumber::FileNotFound, "Could not find the file '" + name + "'.");
  return found->second->bytes;
}

std::string MemoryFileSystem::Key(const std::string& name) {
  std::string key = name;
  std::replace(key.begin(), key.end(), '\\', '/');
  return key;
}

}  // namespace jet::test
