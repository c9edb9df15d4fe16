#include "jet/table/CatalogWriter.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/table/Store.h"

namespace jet {

namespace system_page = format::system_page;

namespace {

// Accounts of files whose administrator cannot be found.
constexpr std::byte kAdmin0{0x07};
constexpr std::byte kAdmin1{0xE8};

std::size_t Column(const Table& table, const char* name) {
  const std::optional<std::size_t> column = table.FindColumn(name);
  if (!column) {
    throw Error(ErrorNumber::DamagedFile,
                "The system table '" + table.Name() + "' is damaged: it has no column '" + name + "'.");
  }
  return *column;
}

/// Now, in coordinated time, to the second.
DateTime Now() {
  using namespace std::chrono;
  const auto since = floor<seconds>(system_clock::now()) - sys_seconds(sys_days{year{1899} / December / 30});
  return {static_cast<double>(since.count()) / 86400.0};
}

std::uint32_t AsId(const Value& value) {
  const auto* const number = value.As<std::int32_t>();
  return number == nullptr ? 0 : static_cast<std::uint32_t>(*number);
}

}  // namespace

Accounts Accounts::FromAdmin(std::span<const std::byte> admin) {
  const std::byte first = admin[0];
  const std::byte second = admin[1];
  const std::byte others = first ^ std::byte{0x01};
  return {{others, second ^ std::byte{0x02}},
          {first, second},
          {others, second},
          {others, second ^ std::byte{0x05}}};
}

CatalogWriter::CatalogWriter(Store& store) : m_store(&store), m_now(Now()) {}

Value CatalogWriter::ReadColumn(const RowRef& row, const char* column) const {
  const Table& objects = m_store->TableAt(system_page::kObjects);
  return objects.Read(row, Column(objects, column));
}

Accounts CatalogWriter::FindAccounts() const {
  const Bytes known = {kAdmin0, kAdmin1};
  for (TableScan scan(m_store->TableAt(system_page::kObjects)); scan.Next();) {
    if (AsId(ReadColumn(scan.Row(), "Id")) != catalog::kDatabase) continue;
    const Value owner = ReadColumn(scan.Row(), "Owner");
    if (const auto* const bytes = owner.As<Bytes>(); bytes != nullptr && bytes->size() == known.size()) {
      return Accounts::FromAdmin(*bytes);
    }
  }
  return Accounts::FromAdmin(known);
}

bool CatalogWriter::Has(std::uint32_t parent, std::string_view name) const {
  for (TableScan scan(m_store->TableAt(system_page::kObjects)); scan.Next();) {
    if (AsId(ReadColumn(scan.Row(), "ParentId")) != parent) continue;
    const Value found = ReadColumn(scan.Row(), "Name");
    const auto* const text = found.As<std::string>();
    if (text != nullptr && format::SameName(*text, name)) return true;
  }
  return false;
}

std::uint32_t CatalogWriter::NextId() const {
  std::uint32_t next = catalog::kFirstOtherId;
  for (TableScan scan(m_store->TableAt(system_page::kObjects)); scan.Next();) {
    const std::uint32_t id = AsId(ReadColumn(scan.Row(), "Id"));
    if (id >= next) next = id + 1;
  }
  if (next < catalog::kFirstOtherId) {
    throw Error(ErrorNumber::InvalidDefinition, "The database has no number left for a further object.");
  }
  return next;
}

void CatalogWriter::AddRow(PageNumber page, const std::vector<std::pair<const char*, Value>>& values) {
  Table& table = m_store->TableAt(page);
  std::vector<ColumnValue> row;
  for (auto& [name, value] : values)
    row.push_back({Column(table, name), std::move(value)});
  table.Insert(std::move(row));
}

void CatalogWriter::AddObject(const CatalogObject& object) {
  AddRow(system_page::kObjects, {{"Id", static_cast<std::int32_t>(object.id)},
                                 {"ParentId", static_cast<std::int32_t>(object.parent)},
                                 {"Name", object.name},
                                 {"Type", object.type},
                                 {"DateCreate", m_now},
                                 {"DateUpdate", m_now},
                                 {"Owner", object.owner},
                                 {"Flags", static_cast<std::int32_t>(object.flags)},
                                 {"LvProp", object.properties.empty() ? Value() : Value(object.properties)}});
}

void CatalogWriter::AddRight(const AccessRight& right) {
  AddRow(system_page::kAccessRights, {{"ObjectId", static_cast<std::int32_t>(right.object)},
                                      {"SID", right.account},
                                      {"ACM", static_cast<std::int32_t>(right.rights)},
                                      {"FInheritable", right.inheritable}});
}

void CatalogWriter::Touch(std::uint32_t id) {
  Table& objects = m_store->TableAt(system_page::kObjects);
  std::optional<RowId> row;
  for (TableScan scan(objects); scan.Next() && !row;) {
    if (AsId(ReadColumn(scan.Row(), "Id")) == id) row = scan.Id();
  }
  if (!row) return;
  const ColumnValue now{Column(objects, "DateUpdate"), m_now};
  objects.Update(*row, {&now, 1});
}

}  // namespace jet
