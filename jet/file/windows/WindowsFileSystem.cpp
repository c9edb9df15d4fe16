#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include "jet/Error.h"
#include "jet/file/File.h"
#include "jet/file/FileNames.h"

namespace jet {
namespace {

std::wstring ToSystemName(const std::string& name) {
  const int bytes = static_cast<int>(name.size());
  const int units = ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name.data(), bytes, nullptr, 0);
  if (units <= 0) throw Error(ErrorNumber::InvalidFileName, "'" + name + "' is not a valid file name.");
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  ::MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name.data(), bytes, wide.data(), units);
  std::replace(wide.begin(), wide.end(), L'/', L'\\');
  return wide;
}

std::string FromSystemName(const std::wstring& systemName) {
  const int units = static_cast<int>(systemName.size());
  const int bytes = ::WideCharToMultiByte(CP_UTF8, 0, systemName.data(), units, nullptr, 0, nullptr, nullptr);
  std::string name(static_cast<std::size_t>(bytes), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, systemName.data(), units, name.data(), bytes, nullptr, nullptr);
  return name;
}

/// Raises what the system's `error` means for an open file or for a name.
[[noreturn]] void RaiseFor(DWORD error, const std::string& name, const std::string& action) {
  // The caller does not know the names of temporary files.
  const std::string shown =
      file_names::IsTemporary(name) ? "a file in '" + file_names::Folder(name) + "'" : "'" + name + "'";
  switch (error) {
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
      throw Error(ErrorNumber::PermissionDenied, "No permission to " + action + " " + shown + ".");
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case ERROR_FILE_TOO_LARGE:
      throw Error(ErrorNumber::DiskFull, "The disk is full: could not " + action + " " + shown + ".");
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
      throw Error(ErrorNumber::InvalidFileName, "'" + name + "' is not a valid file name.");
    case ERROR_FILE_NOT_FOUND:
      throw Error(ErrorNumber::FileNotFound, "Could not find the file '" + name + "'.");
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_NOT_READY:
      throw Error(ErrorNumber::PathNotFound, "The folder of '" + name + "' does not exist.");
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
      throw Error(ErrorNumber::FileInUse, "'" + name + "' is in use by someone else.");
    default:
      throw Error(ErrorNumber::ReadFailed,
                  "Could not " + action + " '" + name + "': system error " + std::to_string(error) + ".");
  }
}

/// A handle that closes itself.
class Handle {
 public:
  explicit Handle(HANDLE handle) : m_handle(handle) {}
  Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE)) {}
  Handle& operator=(Handle&&) = delete;
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (IsOpen()) ::CloseHandle(m_handle);
  }
  HANDLE Get() const { return m_handle; }
  bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }

 private:
  HANDLE m_handle;
};

OVERLAPPED At(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset & 0xFFFFFFFFU);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

DWORD PieceOf(std::size_t bytes) {
  return static_cast<DWORD>(std::min(bytes, std::size_t{1} << 30));
}

class WindowsFile final : public File {
 public:
  WindowsFile(Handle handle, std::string name, bool readOnly)
      : m_handle(std::move(handle)), m_name(std::move(name)), m_readOnly(readOnly) {}

  std::uint64_t Size() const override {
    LARGE_INTEGER size{};
    if (::GetFileSizeEx(m_handle.Get(), &size) == 0) RaiseFor(::GetLastError(), m_name, "read");
    return static_cast<std::uint64_t>(size.QuadPart);
  }

  void Read(std::uint64_t offset, std::span<std::byte> into) override {
    while (!into.empty()) {
      OVERLAPPED place = At(offset);
      DWORD count = 0;
      const bool done = ::ReadFile(m_handle.Get(), into.data(), PieceOf(into.size()), &count, &place) != 0;
      if (!done && ::GetLastError() != ERROR_HANDLE_EOF) RaiseFor(::GetLastError(), m_name, "read");
      if (count == 0) {
        throw Error(ErrorNumber::ReadFailed, "Could not read '" + m_name + "': it ends at byte " +
                                                 std::to_string(offset) + ", too early.");
      }
      offset += count;
      into = into.subspan(count);
    }
  }

  void Write(std::uint64_t offset, std::span<const std::byte> from) override {
    RefuseIfReadOnly();
    while (!from.empty()) {
      OVERLAPPED place = At(offset);
      DWORD count = 0;
      if (::WriteFile(m_handle.Get(), from.data(), PieceOf(from.size()), &count, &place) == 0) {
        RaiseFor(::GetLastError(), m_name, "write");
      }
      if (count == 0) RaiseFor(ERROR_DISK_FULL, m_name, "write");  // no progress and no reason given
      offset += count;
      from = from.subspan(count);
    }
  }

  void Resize(std::uint64_t size) override {
    RefuseIfReadOnly();
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    if (::SetFileInformationByHandle(m_handle.Get(), FileEndOfFileInfo, &end, sizeof(end)) == 0) {
      RaiseFor(::GetLastError(), m_name, "resize");
    }
  }

  void Sync() override {
    if (m_readOnly) return;
    if (::FlushFileBuffers(m_handle.Get()) == 0) RaiseFor(::GetLastError(), m_name, "write");
  }

 private:
  void RefuseIfReadOnly() const {
    if (m_readOnly)
      throw Error(ErrorNumber::PermissionDenied, "'" + m_name + "' was opened for reading only.");
  }

  Handle m_handle;
  std::string m_name;
  bool m_readOnly;
};

/// The access list of a file, for one that is made; none if there is no such file, or it cannot be read.
class Permissions {
 public:
  explicit Permissions(const std::string& like) {
    if (like.empty()) return;
    const std::wstring systemName = ToSystemName(like);
    DWORD size = 0;
    ::GetFileSecurityW(systemName.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
    m_descriptor.resize(size);
    if (size == 0 || ::GetFileSecurityW(systemName.c_str(), DACL_SECURITY_INFORMATION, m_descriptor.data(),
                                        size, &size) == 0)
      m_descriptor.clear();
    m_attributes.lpSecurityDescriptor = m_descriptor.data();
  }
  Permissions(const Permissions&) = delete;
  Permissions& operator=(const Permissions&) = delete;

  SECURITY_ATTRIBUTES* Get() { return m_descriptor.empty() ? nullptr : &m_attributes; }

 private:
  std::vector<std::byte> m_descriptor;
  SECURITY_ATTRIBUTES m_attributes{sizeof(SECURITY_ATTRIBUTES), nullptr, FALSE};
};

class WindowsFileSystem final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) override {
    file_names::Check(name);
    const std::wstring systemName = ToSystemName(name);
    const DWORD access = mode.readOnly ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    const bool alone = mode.exclusive || !mode.readOnly;
    Permissions permissions(mode.create ? mode.like : std::string());
    Handle handle(::CreateFileW(systemName.c_str(), access, alone ? 0 : FILE_SHARE_READ, permissions.Get(),
                                mode.create ? CREATE_NEW : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.IsOpen()) RaiseOpenFailed(::GetLastError(), name, systemName, mode);
    auto file = std::make_unique<WindowsFile>(std::move(handle), name, mode.readOnly);
    try {
      RefuseIfShared(name);
    } catch (...) {
      file.reset();
      if (mode.create) ::DeleteFileW(systemName.c_str());
      throw;
    }
    return file;
  }

  bool Exists(const std::string& name) override {
    if (name.empty()) return false;
    return ::GetFileAttributesW(ToSystemName(name).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  std::string RealName(const std::string& name) override {
    const std::wstring systemName = ToSystemName(name);
    std::wstring full(::GetFullPathNameW(systemName.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        ::GetFullPathNameW(systemName.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full.empty() ? name : FromSystemName(full);
  }

  void Remove(const std::string& name) override {
    file_names::Check(name);
    const std::wstring systemName = ToSystemName(name);
    if (::DeleteFileW(systemName.c_str()) != 0) return;
    const DWORD error = ::GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return;
    if (IsFolder(systemName))
      throw Error(ErrorNumber::PermissionDenied, "'" + name + "' is a folder, not a file.");
    RaiseFor(error, name, "remove");
  }

  void Replace(const std::string& from, const std::string& to, HeldFiles held) override {
    file_names::Check(from);
    file_names::Check(to);
    held = {};  // open files cannot be renamed or replaced here
    if (::MoveFileExW(ToSystemName(from).c_str(), ToSystemName(to).c_str(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
      RaiseFor(::GetLastError(), to, "replace");
    }
  }

  void Rename(const std::string& from, const std::string& to, HeldFiles held) override {
    file_names::Check(from);
    file_names::Check(to);
    held = {};  // as in Replace
    if (::MoveFileExW(ToSystemName(from).c_str(), ToSystemName(to).c_str(), MOVEFILE_WRITE_THROUGH) != 0)
      return;
    const DWORD error = ::GetLastError();
    if (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)
      throw Error(ErrorNumber::ObjectExists, "The file '" + to + "' exists already.");
    RaiseFor(error, to, "create");
  }

  void RemoveLeftOvers(const std::string& name) override {
    const std::string folder = file_names::Folder(name);
    WIN32_FIND_DATAW found{};
    const HANDLE search =
        ::FindFirstFileW(ToSystemName(folder + file_names::kTemporaryPrefix + "*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
      const std::string path = folder + FromSystemName(found.cFileName);
      // An open one stays: files are opened without FILE_SHARE_DELETE.
      const bool isPlain =
          (found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) == 0;
      if (isPlain && file_names::IsTemporary(path)) ::DeleteFileW(ToSystemName(path).c_str());
    } while (::FindNextFileW(search, &found) != 0);
    ::FindClose(search);
  }

 private:
  static bool IsFolder(const std::wstring& systemName) {
    const DWORD attributes = ::GetFileAttributesW(systemName.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  }

  [[noreturn]] static void RaiseOpenFailed(DWORD error, const std::string& name,
                                           const std::wstring& systemName, const OpenMode& mode) {
    if (error == ERROR_FILE_EXISTS || error == ERROR_ALREADY_EXISTS) {
      throw Error(ErrorNumber::ObjectExists, "The file '" + name + "' exists already.");
    }
    if (IsFolder(systemName))
      throw Error(ErrorNumber::PermissionDenied, "'" + name + "' is a folder, not a file.");
    if (error == ERROR_SHARING_VIOLATION && mode.exclusive) {
      // If a shared open succeeds, the other opener allows sharing.
      const Handle probe(::CreateFileW(systemName.c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
      if (!probe.IsOpen()) {
        throw Error(ErrorNumber::FileHeldExclusively,
                    "'" + name + "' is opened exclusively by someone else.");
      }
    }
    RaiseFor(error, name, mode.create ? "create" : mode.readOnly ? "read" : "write");
  }

  /// Programs that share a database keep a lock file beside it open. A closed one was left by a crash.
  static void RefuseIfShared(const std::string& name) {
    const std::string lockFile = file_names::WithExtension(name, ".ldb");
    const Handle handle(::CreateFileW(ToSystemName(lockFile).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.IsOpen() && ::GetLastError() == ERROR_SHARING_VIOLATION) {
      throw Error(ErrorNumber::FileInUse,
                  "'" + name + "' is in use: somebody holds its lock file '" + lockFile + "'.");
    }
  }
};

}  // namespace

std::shared_ptr<FileSystem> SystemFiles() {
  static const std::shared_ptr<FileSystem> files = std::make_shared<WindowsFileSystem>();
  return files;
}

}  // namespace jet
