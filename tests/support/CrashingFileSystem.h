#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "jet/file/File.h"
#include "tests/support/MemoryFileSystem.h"

namespace jet::test {

/// How a machine goes down.
enum class Crash {
  Kill,      ///< the process dies before the operation; the system has all that was written
  TornKill,  ///< the process dies in the operation: some sectors of a write are there, some are not
  PowerCut   ///< of what was written and not synced since, any sectors are there, in any order
};

/// Files in memory that go down with their machine at the n-th operation that changes something.
///
/// Names are durable at once, as the file systems make them; contents are durable once synced. After the
/// crash every operation fails and changes nothing, as if nobody were there to ask for it.
class CrashingFileSystem final : public FileSystem {
 public:
  /// Starts with the files of `files`, all durable.
  explicit CrashingFileSystem(std::map<std::string, std::vector<std::byte>> files);

  std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) override;
  bool Exists(const std::string& name) override { return m_memory->Exists(name); }
  void Remove(const std::string& name) override;
  void Replace(const std::string& from, const std::string& to, std::unique_ptr<File> held) override;

  /// Goes down at the `nth` changing operation from now on.
  void CrashAt(std::size_t nth, Crash crash, std::uint32_t seed);
  bool HasCrashed() const { return m_machine->hasCrashed; }
  /// Changing operations so far.
  std::size_t Operations() const { return m_machine->operations; }
  std::size_t Syncs() const { return m_machine->syncs; }

  /// The files as the machine finds them when it comes up again.
  std::map<std::string, std::vector<std::byte>> Survivors() const;

  /// A change that is not durable yet.
  struct Pending {
    std::uint64_t offset = 0;
    std::vector<std::byte> bytes;  ///< none: the file was cut or extended to `offset`
    bool isResize = false;
  };
  struct Disk {
    std::vector<std::byte> durable;
    std::vector<Pending> pending;
  };
  struct Machine {
    std::map<std::string, Disk> disks;
    std::size_t operations = 0;
    std::size_t syncs = 0;
    std::size_t crashAt = 0;  ///< 0: never
    Crash crash = Crash::Kill;
    std::mt19937 random;
    bool hasCrashed = false;

    /// Counts a changing operation. True when the machine goes down in it; raises when it is down.
    bool Enter();
    [[noreturn]] static void RaiseDown();
  };

 private:
  std::shared_ptr<MemoryFileSystem> m_memory = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<Machine> m_machine = std::make_shared<Machine>();
};

}  // namespace jet::test
