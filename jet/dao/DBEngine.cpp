#include "jet/dao/DBEngine.h"

#include <random>
#include <string_view>
#include <utility>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/dao/DatabaseCore.h"
#include "jet/file/File.h"
#include "jet/file/RedoLog.h"
#include "jet/sql/Literals.h"
#include "jet/table/Compaction.h"
#include "jet/table/EmptyDatabase.h"

namespace jet {
namespace {

OpenMode NewFile(const std::string& like) {
  return {.exclusive = true, .readOnly = false, .create = true, .like = like};
}

/// The password in a connect string; empty when there is none.
std::string_view PasswordIn(std::string_view connect) {
  for (;;) {
    const std::size_t end = connect.find(';');
    const std::string_view item = connect.substr(0, end);
    const std::size_t equal = item.find('=');
    if (equal != std::string_view::npos && SameWord(Trim(item.substr(0, equal)), "pwd"))
      return item.substr(equal + 1);
    if (end == std::string_view::npos) return {};
    connect.remove_prefix(end + 1);
  }
}

std::uint32_t RandomKey() {
  std::random_device device;
  std::uint32_t key = 0;
  while (key == 0)  // which would mean that the pages are plain
    key = static_cast<std::uint32_t>(device());
  return key;
}

}  // namespace

std::string LogNameFor(const std::string& databaseName) {
  return RedoLog::NameFor(databaseName);
}

DBEngine::DBEngine(EngineOptions options) : m_options(std::move(options)) {
  if (m_options.files == nullptr) m_options.files = SystemFiles();
}

std::shared_ptr<Database> DBEngine::OpenDatabase(const std::string& name, bool exclusive, bool readOnly,
                                                 const std::string& connect) {
  Observe("DBEngine.OpenDatabase", name);
  auto file = m_options.files->Open(name, {.exclusive = exclusive, .readOnly = readOnly, .create = false});
  auto log = std::make_unique<RedoLog>(m_options.files, name, m_options.durability);
  log->Recover(*file, readOnly);
  auto pages = std::make_unique<PageStore>(std::move(file), name, std::move(log));
  auto store = Store::Open(std::move(pages), PasswordIn(connect), m_options.cacheBytes);
  return std::make_shared<Database>(
      std::make_shared<DatabaseCore>(name, std::move(store), readOnly, m_options.observer));
}

std::shared_ptr<Database> DBEngine::ReopenDatabase(Database& database, const std::string& connect) {
  DatabaseCore& core = *database.m_core;
  Observe("DBEngine.OpenDatabase", core.Name());
  auto store =
      Store::Open(core.OpenStore().Pages().Storage().Share(), PasswordIn(connect), m_options.cacheBytes);
  auto reopened = std::make_shared<Database>(
      std::make_shared<DatabaseCore>(core.Name(), std::move(store), core.IsReadOnly(), m_options.observer));
  core.Detach();
  return reopened;
}

std::shared_ptr<Database> DBEngine::CreateDatabase(const std::string& name, const CreateOptions& options) {
  Observe("DBEngine.CreateDatabase", name);
  return CreateWithKey(name, options, options.encode ? RandomKey() : 0);
}

std::shared_ptr<Database> DBEngine::CreateWithKey(const std::string& name, const CreateOptions& options,
                                                  std::uint32_t databaseKey) {
  auto file = m_options.files->Open(name, NewFile(options.like));
  auto log =
      std::make_unique<RedoLog>(m_options.files, name, options.durability.value_or(m_options.durability));
  std::unique_ptr<Store> store;
  try {
    log->Remove();  // of a database of that name that is gone
    const NewDatabase properties{.password = options.password, .databaseKey = databaseKey};
    store = CreateEmptyDatabase(std::move(file), name, properties, m_options.cacheBytes);
    store->Pages().UseLog(std::move(log));
  } catch (...) {
    store.reset();
    file.reset();
    RemoveFailed(name);
    throw;
  }
  return std::make_shared<Database>(
      std::make_shared<DatabaseCore>(name, std::move(store), false, m_options.observer));
}

std::shared_ptr<File> DBEngine::CopyDatabase(Database& source, const std::string& name,
                                             const std::string& like) {
  Observe("DBEngine.CopyDatabase", name);
  Store& store = source.m_core->OpenStore();
  std::shared_ptr<File> file = m_options.files->Open(name, NewFile(like));
  try {
    RedoLog(m_options.files, name, Durability::Off).Remove();  // of a database of that name that is gone
    store.Pages().CopyTo(*file);
    file->Sync();
  } catch (...) {
    file.reset();
    RemoveFailed(name);
    throw;
  }
  return file;
}

std::shared_ptr<Database> DBEngine::CompactDatabase(Database& source, const std::string& name) {
  Observe("DBEngine.CompactDatabase", name);
  Store& store = source.m_core->OpenStore();
  const format::DatabaseHeader& header = store.Header();
  auto compacted = CreateWithKey(
      name, {.password = header.password, .durability = Durability::Off, .like = source.m_core->Name()},
      header.databaseKey);
  try {
    CopyContents(store, compacted->m_core->OpenStore());
  } catch (...) {
    try {
      compacted->Close();
    } catch (const Error&) {
      // Report the original error.
    }
    RemoveFailed(name);
    throw;
  }
  return compacted;
}

std::shared_ptr<File> DBEngine::Release(Database& database) {
  return database.m_core->Release();
}

std::shared_ptr<File> DBEngine::Hold(const std::string& name) {
  return m_options.files->Open(name, {});
}

std::string DBEngine::TemporaryName(const std::string& target) const {
  return jet::TemporaryName(*m_options.files, target);
}

// On systems that cannot rename an open file, its lock goes just before.
void DBEngine::ReplaceDatabase(Database& database, const std::string& from, std::shared_ptr<File> made) {
  const std::string to = database.m_core->Name();
  Observe("DBEngine.ReplaceDatabase", to);
  database.m_core->CheckCanChange();  // raises if the log beside it would stay
  m_options.files->Replace(from, to, {.from = std::move(made), .to = database.m_core->Release()});
}

void DBEngine::ReplaceDatabase(const std::string& to, std::shared_ptr<File> held, const std::string& from,
                               std::shared_ptr<File> made) {
  Observe("DBEngine.ReplaceDatabase", to);
  RedoLog(m_options.files, to, Durability::Off).Remove();
  m_options.files->Replace(from, to, {.from = std::move(made), .to = std::move(held)});
}

void DBEngine::PlaceDatabase(const std::string& to, const std::string& from, std::shared_ptr<File> made) {
  Observe("DBEngine.PlaceDatabase", to);
  FileSystem& files = *m_options.files;
  if (files.Exists(to)) throw Error(ErrorNumber::ObjectExists, "The file '" + to + "' exists already.");
  if (files.Exists(LogNameFor(to))) {
    static_cast<void>(files.Open(LogNameFor(to), {}));  // refuses one that is in use
    files.Remove(LogNameFor(to));
  }
  files.Rename(from, to, {.from = std::move(made)});
}

bool DBEngine::HasFile(const std::string& name) const {
  return m_options.files->Exists(name);
}

void DBEngine::RenameDatabase(const std::string& from, std::shared_ptr<File> held, const std::string& to) {
  Observe("DBEngine.RenameDatabase", from);
  FileSystem& files = *m_options.files;
  // The log first: without its log the file would pass for a whole one.
  const bool hasLog = files.Exists(LogNameFor(from));
  if (hasLog) files.Rename(LogNameFor(from), LogNameFor(to), {});
  try {
    files.Rename(from, to, {.from = std::move(held)});
  } catch (const Error& error) {
    if (hasLog && !error.IsUncertain()) files.Rename(LogNameFor(to), LogNameFor(from), {});
    throw;
  }
}

void DBEngine::RemoveDatabase(const std::string& name) {
  Observe("DBEngine.RemoveDatabase", name);
  if (!m_options.files->Exists(name)) return;
  static_cast<void>(m_options.files->Open(name, {}));  // refuses one that is in use
  m_options.files->Remove(name);
  RedoLog(m_options.files, name, Durability::Off).Remove();
}

void DBEngine::RemoveFailed(const std::string& name) noexcept {
  try {
    m_options.files->Remove(name);
  } catch (const std::exception&) {
    // Report the original error.
  }
}

void DBEngine::Observe(const char* call, const std::string& name) const {
  if (m_options.observer != nullptr) m_options.observer->OnCall(call, name);
}

}  // namespace jet
