#include "jet/table/EmptyDatabase.h"

#include <array>
#include <bit>
#include <utility>
#include <vector>

#include "jet/format/DataPage.h"
#include "jet/format/PageLayout.h"
#include "jet/format/UsageMapRow.h"
#include "jet/table/CatalogWriter.h"
#include "jet/table/DefinitionWriter.h"
#include "jet/table/SystemTables.h"

namespace jet {

namespace system_page = format::system_page;
namespace usage_map = format::usage_map;

namespace {

// Creation date, build and accounts belong together: the accounts are masked with something that changes with
// the date, in a way that is not known. These were seen together.
const double kCreated = std::bit_cast<double>(std::uint64_t{0x40E4EC4F6BD4AF81});
constexpr std::uint32_t kBuild = 4518;
constexpr std::array<std::byte, 2> kAdmin = {std::byte{0x07}, std::byte{0xE8}};

/// The maps of all pages: of the free ones, and a second one that is always empty.
void WriteGlobalMaps(const MutablePage& page) {
  format::DataPage::Initialize(page.Bytes(), format::data_page::kOwnerGlobalMap);
  std::vector<std::byte> row(usage_map::kNewRowBytes, std::byte{0xFF});
  std::fill_n(row.begin(), usage_map::kBitmap, std::byte{0});
  format::AssignBit(std::span(row).subspan(usage_map::kBitmap), system_page::kHeader, false);
  format::AssignBit(std::span(row).subspan(usage_map::kBitmap), system_page::kGlobalUsageMap, false);
  format::DataPage maps(page.Bytes(), page.Number());
  maps.Insert(row);
  maps.Insert(std::vector<std::byte>(usage_map::kNewRowBytes));
}

void LayOutPages(Pager& pager, const format::DatabaseHeader& header) {
  ChangeUnit unit(pager);
  format::EncodeDatabaseHeader(header, pager.Append().Bytes());
  WriteGlobalMaps(pager.Append());
  PageAllocator allocator(pager);
  std::vector<format::TableDefinition> tables = LayOutSystemTables();
  for (std::size_t i = 0; i < tables.size(); ++i)
    allocator.Allocate();  // the pages that the header names
  const PageNumber mapPage = NewMapPage(allocator);
  for (format::TableDefinition& table : tables) {
    CompleteDefinition(pager, allocator, table, mapPage);
    WriteDefinition(pager, allocator, table, {});
  }
  unit.Commit();
}

void AddObjects(CatalogWriter& writer, const Accounts& accounts) {
  const auto add = [&](std::uint32_t id, std::uint32_t parent, const char* name, std::int32_t type,
                       const Bytes& owner) {
    writer.AddObject({id, parent, name, type, catalog::kSystemFlag, owner, {}});
  };
  add(catalog::kTables, catalog::kRoot, "Tables", catalog::kTypeContainer, accounts.engine);
  add(catalog::kDatabases, catalog::kRoot, "Databases", catalog::kTypeContainer, accounts.engine);
  add(catalog::kRelationships, catalog::kRoot, "Relationships", catalog::kTypeContainer, accounts.engine);
  add(catalog::kDatabase, catalog::kDatabases, "MSysDb", catalog::kTypeDatabase, accounts.admin);
  add(system_page::kObjects, catalog::kTables, "MSysObjects", catalog::kTypeTable, accounts.engine);
  add(system_page::kAccessRights, catalog::kTables, "MSysACEs", catalog::kTypeTable, accounts.engine);
  add(system_page::kQueries, catalog::kTables, "MSysQueries", catalog::kTypeTable, accounts.engine);
  add(system_page::kRelationships, catalog::kTables, "MSysRelationships", catalog::kTypeTable,
      accounts.engine);
}

void AddRights(CatalogWriter& writer, const Accounts& accounts) {
  const std::vector<AccessRight> rights = {
      {system_page::kObjects, accounts.admin, 0x60000, false},
      {system_page::kAccessRights, accounts.admin, 0x60000, false},
      {system_page::kQueries, accounts.admin, 0x60000, false},
      {system_page::kRelationships, accounts.admin, 0xE0000, false},
      {catalog::kTables, accounts.creator, 0xF00FE, true},
      {catalog::kTables, accounts.admin, 0x60001, false},
      {catalog::kRelationships, accounts.creator, 0xF00FE, true},
      {catalog::kRelationships, accounts.admin, 0x60001, false},
      {catalog::kDatabases, accounts.admin, 0x60000, false},
      {catalog::kDatabase, accounts.admin, 0x6000E, false},
      {catalog::kDatabase, accounts.users, 0x0000E, false},
      {system_page::kQueries, accounts.users, 0x00014, false},
      {system_page::kRelationships, accounts.users, 0x00014, false},
      {system_page::kObjects, accounts.users, 0x00014, false},
      {catalog::kTables, accounts.users, 0xFFEFF, true},
      {catalog::kRelationships, accounts.users, 0xFFFFF, true},
  };
  for (const AccessRight& right : rights)
    writer.AddRight(right);
}

}  // namespace

std::unique_ptr<Store> CreateEmptyDatabase(std::unique_ptr<File> file, const std::string& name,
                                           const NewDatabase& database, std::size_t cacheBytes) {
  format::DatabaseHeader header;
  header.created = kCreated;
  header.build = kBuild;
  header.password = database.password;
  header.databaseKey = database.databaseKey;
  auto pages = std::make_unique<PageStore>(std::move(file), name);
  pages->Start(header.databaseKey);
  auto pager = std::make_unique<Pager>(std::move(pages), cacheBytes);
  LayOutPages(*pager, header);

  std::unique_ptr<Store> store = Store::Adopt(std::move(pager), header);
  ChangeUnit unit(store->Pages());
  const Accounts accounts = Accounts::FromAdmin(kAdmin);
  CatalogWriter writer(*store);
  AddObjects(writer, accounts);
  store->Reload();  // the catalog lists the table of rights only now
  AddRights(writer, accounts);
  unit.Commit();
  store->Reload();
  return store;
}

}  // namespace jet
