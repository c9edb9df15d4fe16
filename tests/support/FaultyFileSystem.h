#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "jet/Error.h"
#include "jet/file/File.h"

namespace jet::test {

/// What a file is asked to do, as far as it can be made to fail.
enum class FileOperation : std::size_t { Read, Write, Resize, Sync };

/// Passes everything on to another file system, counts what its files are asked to do, and fails on purpose.
///
/// Operations are counted together over all files, from 1. Open files keep the counts and stay usable when
/// the file system is dropped first.
class FaultyFileSystem final : public FileSystem {
 public:
  explicit FaultyFileSystem(std::shared_ptr<FileSystem> files);

  std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) override;
  bool Exists(const std::string& name) override { return m_files->Exists(name); }
  void Remove(const std::string& name) override { m_files->Remove(name); }
  void Replace(const std::string& from, const std::string& to, HeldFiles held) override {
    m_files->Replace(from, to, std::move(held));
  }

  void RemoveLeftOvers(const std::string& name) override { m_files->RemoveLeftOvers(name); }

  /// Makes the `nth` operation of that kind from now on fail, once; the file stays as it was.
  void FailOnce(FileOperation operation, std::size_t nth, ErrorNumber error = ErrorNumber::ReadFailed);
  /// Makes the `nth` operation of that kind from now on fail, and all after it.
  void FailFrom(FileOperation operation, std::size_t nth, ErrorNumber error = ErrorNumber::ReadFailed);
  /// No more failures; HasFailed is false again.
  void Mend();

  /// Whether an operation was made to fail since the last Mend.
  bool HasFailed() const { return m_state->hasFailed; }
  /// Operations asked for so far, failed ones included.
  std::size_t Count(FileOperation operation) const { return m_state->Of(operation).count; }

  struct Plan {
    std::size_t count = 0;
    std::size_t failAt = 0;  ///< 0: never
    bool failAfterwards = false;
    ErrorNumber error = ErrorNumber::ReadFailed;
  };
  struct State {
    std::array<Plan, 4> plans;
    bool hasFailed = false;
    Plan& Of(FileOperation operation) { return plans.at(static_cast<std::size_t>(operation)); }
    /// Counts the operation and raises the error planned for it.
    void Enter(FileOperation operation, const char* what);
  };

 private:
  std::shared_ptr<FileSystem> m_files;
  std::shared_ptr<State> m_state;
};

}  // namespace jet::test
