#include "jet/table/Store.h"

#include <algorithm>
#include <utility>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/TableDefinitionLayout.h"

namespace jet {

namespace {

// No definition needs more: 255 columns and 255 indexes with the longest names take less than 256 KiB.
constexpr std::size_t kLongestDefinition = std::size_t{512} * 1024;
constexpr std::int32_t kTypeTable = 1;

const CatalogEntry kCatalogItself{"MSysObjects", format::system_page::kObjects, 0x80000000, {}};

std::int32_t AsInteger(const Value& value) {
  const auto* number = value.As<std::int32_t>();
  return number == nullptr ? 0 : *number;
}

}  // namespace

Bytes ReadDefinitionStream(Pager& pager, PageNumber first, std::vector<std::uint32_t>& pages) {
  namespace layout = format::definition_page;
  const auto raise = [first](const char* what) {
    throw Error(ErrorNumber::DamagedFile,
                "The table definition on page " + std::to_string(first) + " is damaged: " + what + ".");
  };
  Bytes stream;
  std::size_t length = 0;
  pages.clear();
  for (PageNumber number = first; number != 0;) {
    const PageHandle page = pager.Get(number);
    if (std::to_integer<std::uint8_t>(page.Data()[0]) != format::page_type::kTableDefinition) {
      raise("a page of it is of another type");
    }
    if (pages.empty()) {
      length = std::size_t{format::LoadU32(page.Data() + layout::kLength)} + layout::kHeadSize;
      if (length > kLongestDefinition) raise("its length is absurd");
    } else if (stream.size() >= length) {
      raise("it has more pages than its length says");
    }
    const std::size_t from = pages.empty() ? 0 : layout::kHeadSize;
    stream.insert(stream.end(), page.Bytes().begin() + static_cast<std::ptrdiff_t>(from), page.Bytes().end());
    pages.push_back(number);
    number = format::LoadU32(page.Data() + layout::kNextPage);
  }
  if (stream.size() < length) raise("it has fewer pages than its length says");
  stream.resize(length);
  return stream;
}

Store::Store(std::unique_ptr<Pager> pager, format::DatabaseHeader header)
    : m_pager(std::move(pager)), m_header(std::move(header)), m_allocator(*m_pager) {}

std::unique_ptr<Store> Store::Open(std::unique_ptr<PageStore> pages, std::string_view password,
                                   std::size_t cacheBytes) {
  const std::string& name = pages->Name();
  format::DatabaseHeader header = format::DecodeDatabaseHeader(pages->ReadHeader(), name);
  if (!header.password.empty() && header.password != password) {
    throw Error(ErrorNumber::PasswordRejected, "The password is not that of the database '" + name + "'.");
  }
  pages->Start(header.databaseKey);
  auto pager = std::make_unique<Pager>(std::move(pages), cacheBytes);
  return Adopt(std::move(pager), std::move(header));
}

std::unique_ptr<Store> Store::Adopt(std::unique_ptr<Pager> pager, format::DatabaseHeader header) {
  std::unique_ptr<Store> store(new Store(std::move(pager), std::move(header)));
  store->m_allocator.CheckFileIsWhole();
  store->ReadCatalog();
  // The header differs between files, and a definition changes with the number of rows.
  store->m_pager->Storage().UseWitnesses([&catalog = store->m_catalog] {
    std::vector<PageNumber> pages{format::system_page::kHeader};
    for (const CatalogEntry& entry : catalog)
      pages.push_back(entry.definition);
    return pages;
  });
  return store;
}

Store::~Store() {
  if (m_pager == nullptr) return;
  try {
    m_pager->Close();
  } catch (...) {
    // Who wants to know calls Close.
  }
}

void Store::Close() {
  m_pager->Close();
}

std::shared_ptr<File> Store::Release() {
  return m_pager->Release();
}

void Store::ReadCatalog() {
  Table& objects =
      *m_tables.try_emplace(kCatalogItself.definition, std::make_unique<Table>(*this, kCatalogItself))
           .first->second;
  const auto column = [&](const char* name) {
    const std::optional<std::size_t> found = objects.FindColumn(name);
    if (!found) {
      throw Error(ErrorNumber::DamagedFile,
                  "The file '" + FileName() + "' is damaged: its catalog has no column '" + name + "'.");
    }
    return *found;
  };
  const std::size_t id = column("Id");
  const std::size_t nameColumn = column("Name");
  const std::size_t type = column("Type");
  const std::size_t flags = column("Flags");
  std::vector<CatalogEntry> catalog;
  std::unordered_map<std::string, std::size_t> byName;
  std::string buffer;
  for (TableScan scan(objects); scan.Next();) {
    if (AsInteger(objects.Read(scan.Row(), type)) != kTypeTable) continue;
    CatalogEntry entry;
    const auto name = objects.ReadText(objects.View(scan.Row()), nameColumn, buffer);
    if (!name) continue;
    entry.name = *name;
    entry.definition = static_cast<PageNumber>(AsInteger(objects.Read(scan.Row(), id)));
    entry.flags = static_cast<std::uint32_t>(AsInteger(objects.Read(scan.Row(), flags)));
    entry.row = scan.Id();
    byName.try_emplace(format::FoldName(entry.name), catalog.size());
    catalog.push_back(std::move(entry));
  }
  m_catalog = std::move(catalog);
  m_byName = std::move(byName);
}

Table* Store::FindTable(std::string_view name) {
  const auto found = m_byName.find(format::FoldName(name));
  return found == m_byName.end() ? nullptr : &TableAt(m_catalog[found->second].definition);
}

Table& Store::TableAt(PageNumber definition) {
  const auto loaded = m_tables.find(definition);
  if (loaded != m_tables.end()) return *loaded->second;
  const auto entry = std::find_if(m_catalog.begin(), m_catalog.end(),
                                  [&](const CatalogEntry& e) { return e.definition == definition; });
  if (entry == m_catalog.end()) {
    throw Error(ErrorNumber::DamagedFile,
                "The file '" + FileName() +
                    "' is damaged: its catalog has no table with a definition on page " +
                    std::to_string(definition) + ".");
  }
  return *m_tables.emplace(definition, std::make_unique<Table>(*this, *entry)).first->second;
}

std::vector<std::string> Store::TableNames() const {
  std::vector<std::string> names;
  names.reserve(m_catalog.size());
  for (const CatalogEntry& entry : m_catalog)
    names.push_back(entry.name);
  return names;
}

void Store::Reload() {
  const PageHandle page = m_pager->Get(format::system_page::kHeader);
  m_header = format::DecodeDatabaseHeader(page.Bytes(), FileName());
  ReadCatalog();
  for (auto table = m_tables.begin(); table != m_tables.end();) {
    const bool listed = std::any_of(m_catalog.begin(), m_catalog.end(),
                                    [&](const CatalogEntry& e) { return e.definition == table->first; });
    if (listed) {
      table->second->Reload();
      ++table;
    } else if (table->first == kCatalogItself.definition) {
      ++table;
    } else {
      table = m_tables.erase(table);  // it was made in a change that was undone
    }
  }
}

}  // namespace jet
