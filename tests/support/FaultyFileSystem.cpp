#include "tests/support/FaultyFileSystem.h"

#include <utility>

namespace jet::test {
namespace {

class FaultyFile final : public File {
 public:
  FaultyFile(std::unique_ptr<File> file, std::shared_ptr<FaultyFileSystem::State> state)
      : m_file(std::move(file)), m_state(std::move(state)) {}

  std::uint64_t Size() const override { return m_file->Size(); }
  void Read(std::uint64_t offset, std::span<std::byte> into) override {
    m_state->Enter(FileOperation::Read, "read");
    m_file->Read(offset, into);
  }
  void Write(std::uint64_t offset, std::span<const std::byte> from) override {
    m_state->Enter(FileOperation::Write, "write");
    m_file->Write(offset, from);
  }
  void Resize(std::uint64_t size) override {
    m_state->Enter(FileOperation::Resize, "resize");
    m_file->Resize(size);
  }
  void Sync() override {
    m_state->Enter(FileOperation::Sync, "sync");
    m_file->Sync();
  }

 private:
  std::unique_ptr<File> m_file;
  std::shared_ptr<FaultyFileSystem::State> m_state;
};

}  // namespace

FaultyFileSystem::FaultyFileSystem(std::shared_ptr<FileSystem> files)
    : m_files(std::move(files)), m_state(std::make_shared<State>()) {}

std::unique_ptr<File> FaultyFileSystem::Open(const std::string& name, const OpenMode& mode) {
  return std::make_unique<FaultyFile>(m_files->Open(name, mode), m_state);
}

void FaultyFileSystem::FailOnce(FileOperation operation, std::size_t nth, ErrorNumber error) {
  FailFrom(operation, nth, error);
  m_state->Of(operation).failAfterwards = false;
}

void FaultyFileSystem::FailFrom(FileOperation operation, std::size_t nth, ErrorNumber error) {
  Plan& plan = m_state->Of(operation);
  plan.failAt = plan.count + nth;
  plan.failAfterwards = true;
  plan.error = error;
}

void FaultyFileSystem::Mend() {
  for (Plan& plan : m_state->plans)
    plan.failAt = 0;
  m_state->hasFailed = false;
}

void FaultyFileSystem::State::Enter(FileOperation operation, const char* what) {
  Plan& plan = Of(operation);
  ++plan.count;
  const bool fails =
      plan.failAt != 0 && (plan.failAfterwards ? plan.count >= plan.failAt : plan.count == plan.failAt);
  if (!fails) return;
  hasFailed = true;
  throw Error(plan.error, std::string("A ") + what + " was made to fail.");
}

}  // namespace jet::test
