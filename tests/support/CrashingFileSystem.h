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

/// How a machine goes down, and what of the writes that were not synced it finds when it comes up again.
enum class Crash {
  Kill,             ///< the process dies before the operation; the system has all that was written
  TornKill,         ///< the process dies in the operation: some sectors of a write are there, some are not
  LoseUnsynced,     ///< nothing of it
  ReorderUnsynced,  ///< the last writes, while earlier ones are gone
  PowerCut          ///< any sectors of it, in any order
};

/// How an operation fails.
enum class Failure {
  Clean,  ///< without an effect
  Torn    ///< a write leaves some sectors written; a sync drops some writes for good, which still read well
};

/// Files in memory that go down with their machine at the n-th operation that changes something, or whose
/// n-th operation of any kind fails.
///
/// Names are durable at once, as the file systems make them; contents are durable once synced. After the
/// crash every operation fails and changes nothing, as after the end of the process.
class CrashingFileSystem final : public FileSystem {
 public:
  /// Starts with the files of `files`, all durable.
  explicit CrashingFileSystem(std::map<std::string, std::vector<std::byte>> files);

  std::unique_ptr<File> Open(const std::string& name, const OpenMode& mode) override;
  bool Exists(const std::string& name) override { return m_memory->Exists(name); }
  void Remove(const std::string& name) override;
  void Replace(const std::string& from, const std::string& to, HeldFiles held) override;
  void RemoveLeftOvers(const std::string& name) override;

  /// Goes down at the `nth` changing operation from now on.
  void CrashAt(std::size_t nth, Crash crash, std::uint32_t seed);
  bool HasCrashed() const { return m_machine->hasCrashed; }
  /// Makes the `nth` operation from now on fail, reads and openings included; `forGood`: and all after it.
  void FailAt(std::size_t nth, Failure failure, bool forGood, std::uint32_t seed);
  /// No more failures. HasFailed stays as it is.
  void Mend() { m_machine->failAt = 0; }
  bool HasFailed() const { return m_machine->hasFailed; }
  bool HasFailedToRead() const { return m_machine->hasFailedToRead; }
  /// Changing operations so far.
  std::size_t Operations() const { return m_machine->operations; }
  /// Operations of any kind so far.
  std::size_t Calls() const { return m_machine->calls; }
  std::size_t Syncs() const { return m_machine->syncs; }

  /// The files as the machine finds them when it comes up again.
  std::map<std::string, std::vector<std::byte>> Survivors() const { return Survivors(m_machine->crash); }
  /// The same, had it gone down in another way just now.
  std::map<std::string, std::vector<std::byte>> Survivors(Crash crash) const;

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
    std::size_t calls = 0;   // of any kind
    std::size_t failAt = 0;  // 0: never
    Failure failure = Failure::Clean;
    bool failsForGood = false;
    bool hasFailed = false;
    bool hasFailedToRead = false;

    /// Counts a changing operation. True when the machine goes down in it; raises when it is down.
    bool Enter();
    /// Counts an operation of any kind. True when it is to fail.
    bool Fails();
    bool Flips() { return random() % 2 == 0; }
    [[noreturn]] static void RaiseFailed();
    [[noreturn]] static void RaiseDown();
  };

 private:
  std::shared_ptr<MemoryFileSystem> m_memory = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<Machine> m_machine = std::make_shared<Machine>();
};

}  // namespace jet::test
