#include "tests/support/DesktopObjects.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "jet/file/PageStore.h"
#include "jet/format/PageLayout.h"
#include "jet/format/PropertyBlob.h"
#include "jet/format/TextCodec.h"
#include "jet/table/CatalogWriter.h"
#include "jet/table/SchemaWriter.h"
#include "jet/table/Store.h"
#include "tests/support/TestFiles.h"

namespace jet::test {
namespace {

namespace system_page = format::system_page;

class Objects {
 public:
  explicit Objects(Store& store) : m_writer(store) {}

  std::int32_t Add(std::int32_t parent, const char* name, std::int32_t type,
                   std::vector<std::pair<const char*, Value>> more = {}) {
    const auto id = static_cast<std::int32_t>(m_writer.NextId());
    std::vector<std::pair<const char*, Value>> row = {{"Id", id},
                                                      {"ParentId", parent},
                                                      {"Name", name},
                                                      {"Type", type},
                                                      {"DateCreate", DateTime{kDesktopDay}},
                                                      {"DateUpdate", DateTime{kDesktopDay + 1}},
                                                      {"Owner", m_writer.FindAccounts().admin},
                                                      {"Flags", 0}};
    row.insert(row.end(), more.begin(), more.end());
    m_writer.AddRow(system_page::kObjects, row);
    // An account of a workgroup.
    m_writer.AddRight({static_cast<std::uint32_t>(id), Bytes(114, std::byte{0x5A}), 0xFFFFF, false});
    m_writer.AddRight({static_cast<std::uint32_t>(id), m_writer.FindAccounts().users, 0x14, false});
    return id;
  }

  void AddQueryRow(std::int32_t query, std::int32_t attribute, std::int32_t order,
                   std::vector<std::pair<const char*, Value>> more) {
    std::vector<std::pair<const char*, Value>> row = {
        {"ObjectId", query},
        {"Attribute", attribute},
        {"Order", Bytes{std::byte{0}, std::byte{0}, std::byte{0}, static_cast<std::byte>(order)}}};
    row.insert(row.end(), more.begin(), more.end());
    m_writer.AddRow(system_page::kQueries, row);
  }

 private:
  CatalogWriter m_writer;
};

Value Properties(const char* name, const char* text) {
  format::PropertyBlob blob;
  format::PropertyBlob::Block block;
  block.kind = format::PropertyBlob::kObjectBlock;
  block.properties.push_back(
      {name, 0, static_cast<std::uint8_t>(ColumnType::Text), format::EncodeText(text, false)});
  blob.blocks.push_back(std::move(block));
  return format::EncodeProperties(blob);
}

void AddQuery(Objects& objects) {
  const std::int32_t query = objects.Add(static_cast<std::int32_t>(catalog::kTables), "best players", 5);
  objects.AddQueryRow(query, 0, 0, {});
  objects.AddQueryRow(query, 1, 0, {{"Flag", 1}});
  objects.AddQueryRow(query, 3, 0, {{"Flag", 2}});
  objects.AddQueryRow(query, 5, 0, {{"Name1", "player info"}, {"Name2", "p"}});
  objects.AddQueryRow(query, 5, 1, {{"Name1", "team info"}});
  objects.AddQueryRow(query, 6, 0, {{"Expression", "p.[last name]"}, {"Flag", 0}});
  objects.AddQueryRow(query, 6, 1, {{"Expression", "[team info].abbr"}, {"Name1", "team"}, {"Flag", 0}});
  objects.AddQueryRow(
      query, 7, 0,
      {{"Name1", "p"}, {"Name2", "team info"}, {"Expression", "p.[team id] = [team info].id"}, {"Flag", 1}});
  objects.AddQueryRow(query, 8, 0, {{"Expression", "p.[is retired] = False"}});
  objects.AddQueryRow(query, 11, 0, {{"Expression", "p.[last name]"}, {"Name1", "D"}});
  objects.AddQueryRow(query, 255, 0, {});
}

}  // namespace

void AddDesktopObjects(std::unique_ptr<File> file) {
  constexpr std::size_t kCacheBytes = std::size_t{1} << 20;
  const auto store =
      Store::Open(std::make_unique<PageStore>(std::move(file), "league.mdb"), kFixturePassword, kCacheBytes);
  SchemaWriter(*store).CreateTable(
      {"MSysAccessObjects",
       {{.name = "ID", .type = ColumnType::Long}, {.name = "Data", .type = ColumnType::Ole}},
       {{.name = "AOIndex", .columns = {{"ID"}}, .primary = true}},
       std::nullopt});
  Table& hidden = *store->FindTable("MSysAccessObjects");
  hidden.Insert({{0, 1}, {1, Bytes(5000, std::byte{0xAC})}});
  {
    ChangeUnit unit(store->Pages());
    Objects objects(*store);
    const std::int32_t forms = objects.Add(static_cast<std::int32_t>(catalog::kRoot), "Forms", 3);
    objects.Add(forms, "Draft form", -32768, {{"LvProp", Properties("Description", "To draft with")}});
    objects.Add(static_cast<std::int32_t>(catalog::kDatabases), "SummaryInfo", -32757,
                {{"LvProp", Properties("Title", "The league")}, {"LvExtra", Bytes(70, std::byte{0x11})}});
    objects.Add(forms, "SummaryInfo", -32757, {{"LvProp", Properties("Title", "Another")}});
    objects.Add(static_cast<std::int32_t>(catalog::kTables), "far players", 6,
                {{"Database", "C:\\far.mdb"}, {"ForeignName", "players"}, {"Flags", 0x200000}});
    AddQuery(objects);
    unit.Commit();
  }
  // The table is a hidden one from the start, but the engine does not make such tables.
  {
    ChangeUnit unit(store->Pages());
    Table& catalogTable = store->TableAt(system_page::kObjects);
    for (TableScan scan(catalogTable); scan.Next();) {
      if (catalogTable.Read(scan.Row(), *catalogTable.FindColumn("Name")) != Value("MSysAccessObjects"))
        continue;
      const std::vector<ColumnValue> changes = {
          {*catalogTable.FindColumn("Flags"), 2},
          {*catalogTable.FindColumn("DateCreate"), DateTime{kDesktopDay}},
          {*catalogTable.FindColumn("DateUpdate"), DateTime{kDesktopDay + 1}}};
      catalogTable.Update(scan.Id(), changes);
      break;
    }
    unit.Commit();
  }
  store->Close();
}

}  // namespace jet::test
