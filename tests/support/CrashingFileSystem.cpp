#include "tests/support/CrashingFileSystem.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"

namespace jet::test {
namespace {

constexpr std::size_t kSector = 512;

using Disk = CrashingFileSystem::Disk;
using Machine = CrashingFileSystem::Machine;
using Pending = CrashingFileSystem::Pending;

void Apply(std::vector<std::byte>& bytes, const Pending& change) {
  if (change.isResize) {
    bytes.resize(change.offset);
    return;
  }
  const std::uint64_t end = change.offset + change.bytes.size();
  if (end > bytes.size()) bytes.resize(end);
  std::copy(change.bytes.begin(), change.bytes.end(),
            bytes.begin() + static_cast<std::ptrdiff_t>(change.offset));
}

/// The change cut at the boundaries of the disk's sectors.
std::vector<Pending> Sectors(const Pending& change) {
  if (change.isResize) return {change};
  std::vector<Pending> sectors;
  for (std::size_t at = 0; at < change.bytes.size();) {
    const std::size_t room = kSector - static_cast<std::size_t>((change.offset + at) % kSector);
    const std::size_t size = std::min(room, change.bytes.size() - at);
    const auto from = change.bytes.begin() + static_cast<std::ptrdiff_t>(at);
    sectors.push_back({change.offset + at, {from, from + static_cast<std::ptrdiff_t>(size)}});
    at += size;
  }
  return sectors;
}

class CrashingFile final : public File {
 public:
  CrashingFile(std::unique_ptr<File> file, std::string name, std::shared_ptr<Machine> machine)
      : m_file(std::move(file)), m_name(std::move(name)), m_machine(std::move(machine)) {}

  std::uint64_t Size() const override { return m_file->Size(); }
  void Read(std::uint64_t offset, std::span<std::byte> into) override {
    if (m_machine->hasCrashed) Machine::RaiseDown();
    if (m_machine->Fails()) {
      m_machine->hasFailedToRead = true;
      Machine::RaiseFailed();
    }
    m_file->Read(offset, into);
  }
  void Write(std::uint64_t offset, std::span<const std::byte> from) override {
    const Pending change{offset, {from.begin(), from.end()}};
    if (m_machine->Fails()) {
      if (m_machine->failure == Failure::Torn) {
        for (Pending& sector : Sectors(change)) {
          if (!m_machine->Flips()) continue;
          m_file->Write(sector.offset, sector.bytes);
          Keep(std::move(sector));
        }
      }
      Machine::RaiseFailed();
    }
    if (m_machine->Enter()) {
      if (m_machine->crash != Crash::Kill) {
        for (Pending& sector : Sectors(change)) {
          if (m_machine->Flips()) Keep(std::move(sector));
        }
      }
      Machine::RaiseDown();
    }
    m_file->Write(offset, from);
    Keep(change);
  }
  void Resize(std::uint64_t size) override {
    if (m_machine->Fails()) Machine::RaiseFailed();
    if (m_machine->Enter()) Machine::RaiseDown();
    m_file->Resize(size);
    Keep({size, {}, true});
  }
  void Sync() override {
    ++m_machine->syncs;
    const bool fails = m_machine->Fails();
    if (fails && m_machine->failure == Failure::Clean) Machine::RaiseFailed();
    if (!fails && m_machine->Enter()) Machine::RaiseDown();
    m_file->Sync();
    Disk& disk = m_machine->disks[m_name];
    for (const Pending& change : disk.pending) {
      if (!fails || m_machine->Flips()) Apply(disk.durable, change);
    }
    disk.pending.clear();
    if (fails) Machine::RaiseFailed();
  }

 private:
  void Keep(Pending change) { m_machine->disks[m_name].pending.push_back(std::move(change)); }

  std::unique_ptr<File> m_file;
  std::string m_name;
  std::shared_ptr<Machine> m_machine;
};

}  // namespace

bool CrashingFileSystem::Machine::Enter() {
  if (hasCrashed) RaiseDown();
  hasCrashed = ++operations == crashAt;
  return hasCrashed;
}

bool CrashingFileSystem::Machine::Fails() {
  if (hasCrashed) RaiseDown();
  ++calls;
  const bool fails = failAt != 0 && (failsForGood ? calls >= failAt : calls == failAt);
  hasFailed = hasFailed || fails;
  return fails;
}

void CrashingFileSystem::Machine::RaiseFailed() {
  throw Error(ErrorNumber::DiskFull, "The disk was made to fail.");
}

void CrashingFileSystem::Machine::RaiseDown() {
  throw Error(ErrorNumber::ReadFailed, "The machine is down.");
}

CrashingFileSystem::CrashingFileSystem(std::map<std::string, std::vector<std::byte>> files) {
  for (auto& [name, bytes] : files) {
    m_memory->Put(name, bytes);
    m_machine->disks[name].durable = std::move(bytes);
  }
}

std::unique_ptr<File> CrashingFileSystem::Open(const std::string& name, const OpenMode& mode) {
  if (m_machine->Fails()) Machine::RaiseFailed();
  if (mode.create && m_machine->Enter()) Machine::RaiseDown();
  auto file = m_memory->Open(name, mode);
  m_machine->disks.try_emplace(name);
  return std::make_unique<CrashingFile>(std::move(file), name, m_machine);
}

void CrashingFileSystem::Remove(const std::string& name) {
  if (m_machine->Fails()) Machine::RaiseFailed();
  if (m_machine->Enter()) Machine::RaiseDown();
  m_memory->Remove(name);
  m_machine->disks.erase(name);
}

void CrashingFileSystem::Replace(const std::string& from, const std::string& to, HeldFiles held) {
  if (m_machine->Fails()) Machine::RaiseFailed();
  if (m_machine->Enter()) Machine::RaiseDown();
  m_memory->Replace(from, to, std::move(held));
  m_machine->disks[to] = std::move(m_machine->disks[from]);
  m_machine->disks.erase(from);
}

void CrashingFileSystem::RemoveLeftOvers(const std::string& /*name*/) {
  std::vector<std::string> leftOvers;
  for (const auto& [name, disk] : m_machine->disks) {
    if (m_memory->IsLeftOver(name)) leftOvers.push_back(name);
  }
  for (const std::string& name : leftOvers)
    Remove(name);
}

void CrashingFileSystem::CrashAt(std::size_t nth, Crash crash, std::uint32_t seed) {
  m_machine->crashAt = m_machine->operations + nth;
  m_machine->crash = crash;
  m_machine->random.seed(seed);
}

void CrashingFileSystem::FailAt(std::size_t nth, Failure failure, bool forGood, std::uint32_t seed) {
  m_machine->failAt = m_machine->calls + nth;
  m_machine->failure = failure;
  m_machine->failsForGood = forGood;
  m_machine->random.seed(seed);
}

std::map<std::string, std::vector<std::byte>> CrashingFileSystem::Survivors(Crash crash) const {
  std::map<std::string, std::vector<std::byte>> files;
  std::mt19937 random = m_machine->random;
  for (const auto& [name, disk] : m_machine->disks) {
    std::vector<std::byte> bytes = disk.durable;
    std::size_t lost = 0;  // first of the writes that are not synced
    if (crash == Crash::LoseUnsynced) lost = disk.pending.size();
    if (crash == Crash::ReorderUnsynced) lost = random() % (disk.pending.size() + 1);
    for (std::size_t i = lost; i < disk.pending.size(); ++i) {
      for (const Pending& sector : Sectors(disk.pending[i])) {
        if (crash != Crash::PowerCut || random() % 2 == 0) Apply(bytes, sector);
      }
    }
    files[name] = std::move(bytes);
  }
  return files;
}

}  // namespace jet::test
