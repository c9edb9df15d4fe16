#include "jet/table/CatalogCopy.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "jet/Error.h"
#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/table/CatalogWriter.h"

namespace jet {

namespace system_page = format::system_page;

namespace {

/// Values of a row of a system table that are not Null, by the names of the columns.
using NamedRow = std::map<std::string, Value, std::less<>>;

struct PlacedRow {
  RowId place;
  NamedRow values;

  std::uint32_t Id(std::string_view column) const {
    const auto found = values.find(column);
    const auto* const number = found == values.end() ? nullptr : found->second.As<std::int32_t>();
    return number == nullptr ? 0 : static_cast<std::uint32_t>(*number);
  }
  std::string Text(std::string_view column) const {
    const auto found = values.find(column);
    return found == values.end() ? std::string() : found->second.ToText();
  }
  void SetId(const std::string& column, std::uint32_t id) { values[column] = static_cast<std::int32_t>(id); }
};

std::vector<PlacedRow> RowsOf(Store& store, PageNumber page) {
  const Table& table = store.TableAt(page);
  std::vector<PlacedRow> rows;
  for (TableScan scan(table); scan.Next();) {
    PlacedRow row;
    row.place = scan.Id();
    for (std::size_t c = 0; c < table.Definition().columns.size(); ++c) {
      Value value = table.ReadForKey(scan.Row(), c);
      if (!value.IsNull()) row.values.emplace(table.Definition().columns[c].name, std::move(value));
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<ColumnValue> ValuesFor(const Table& table, const NamedRow& values) {
  std::vector<ColumnValue> result;
  for (const auto& [name, value] : values) {
    const std::optional<std::size_t> column = table.FindColumn(name);
    if (!column) {
      throw Error(ErrorNumber::FeatureNotSupported,
                  "A compacted file would lose the column '" + name + "' of table '" + table.Name() + "'.");
    }
    result.push_back({*column, value});
  }
  return result;
}

void Add(Store& store, PageNumber page, const PlacedRow& row) {
  Table& table = store.TableAt(page);
  table.Insert(ValuesFor(table, row.values));
}

bool IsTable(const PlacedRow& object) {
  return static_cast<std::int32_t>(object.Id("Type")) == catalog::kTypeTable;
}

bool IsRelationship(const PlacedRow& object) {
  return static_cast<std::int32_t>(object.Id("Type")) == catalog::kTypeRelationship;
}

/// Every database has these objects, with the same ids.
bool IsCore(std::uint32_t id) {
  return id == catalog::kTables || id == catalog::kDatabases || id == catalog::kRelationships ||
         id == catalog::kDatabase || (id >= system_page::kObjects && id <= system_page::kRelationships);
}

/// Folded names of the relationships that are enforced.
std::set<std::string> EnforcedRelations(const std::vector<PlacedRow>& rows) {
  std::set<std::string> names;
  for (const PlacedRow& row : rows) {
    if ((row.Id("grbit") & catalog::kNotEnforced) == 0)
      names.insert(format::FoldName(row.Text("szRelationship")));
  }
  return names;
}

}  // namespace

CatalogCopy::CatalogCopy(Store& from, Store& to) : m_from(&from), m_to(&to) {}

std::uint32_t CatalogCopy::CopyOf(std::uint32_t id) const {
  if (IsCore(id) || id == catalog::kRoot) return id;
  const auto found = m_ids.find(id);
  return found == m_ids.end() ? 0 : found->second;
}

void CatalogCopy::AddObjects() {
  const auto enforced = EnforcedRelations(RowsOf(*m_from, system_page::kRelationships));
  std::vector<PlacedRow> objects = RowsOf(*m_from, system_page::kObjects);
  std::erase_if(objects, [&](const PlacedRow& object) {
    return IsCore(object.Id("Id")) || IsTable(object) ||
           (IsRelationship(object) && enforced.contains(format::FoldName(object.Text("Name"))));
  });
  std::uint32_t next = catalog::kFirstOtherId;
  for (const PlacedRow& object : objects)
    next = std::max(next, object.Id("Id") + 1);
  for (const PlacedRow& object : objects) {
    const std::uint32_t id = object.Id("Id");
    m_ids[id] = id >= catalog::kFirstOtherId ? id : next++;  // lower ones are those of tables
  }
  ChangeUnit unit(m_to->Pages());
  for (PlacedRow& object : objects) {
    object.SetId("Id", m_ids[object.Id("Id")]);
    object.SetId("ParentId", CopyOf(object.Id("ParentId")));
    Add(*m_to, system_page::kObjects, object);
  }
  AddQueries();
  AddRelationRows();
  unit.Commit();
}

void CatalogCopy::AddQueries() {
  for (PlacedRow& row : RowsOf(*m_from, system_page::kQueries)) {
    if (const std::uint32_t id = CopyOf(row.Id("ObjectId")); id != 0) row.SetId("ObjectId", id);
    Add(*m_to, system_page::kQueries, row);
  }
}

void CatalogCopy::AddRelationRows() {
  for (const PlacedRow& row : RowsOf(*m_from, system_page::kRelationships)) {
    if ((row.Id("grbit") & catalog::kNotEnforced) != 0) Add(*m_to, system_page::kRelationships, row);
  }
}

void CatalogCopy::CopyAttributes() {
  ChangeUnit unit(m_to->Pages());
  std::map<std::uint32_t, PlacedRow> originals;  // by the id of their copies
  std::map<std::string, PlacedRow> relations;    // by folded name
  for (PlacedRow& object : RowsOf(*m_from, system_page::kObjects)) {
    if (IsRelationship(object)) {
      relations.emplace(format::FoldName(object.Text("Name")), std::move(object));
    } else if (const std::uint32_t id = CopyOf(object.Id("Id")); id != 0) {
      originals.emplace(id, std::move(object));
    }
  }
  Table& objects = m_to->TableAt(system_page::kObjects);
  for (const PlacedRow& copy : RowsOf(*m_to, system_page::kObjects)) {
    const PlacedRow* original = nullptr;
    if (IsRelationship(copy)) {
      const auto found = relations.find(format::FoldName(copy.Text("Name")));
      if (found == relations.end()) continue;
      original = &found->second;
      m_ids[original->Id("Id")] = copy.Id("Id");
    } else {
      const auto found = originals.find(copy.Id("Id"));
      if (found == originals.end()) continue;
      original = &found->second;
    }
    NamedRow values = original->values;
    for (const char* own : {"Id", "ParentId", "Name", "Type", "Owner"})
      values.erase(own);
    objects.Update(copy.place, ValuesFor(objects, values));
  }
  CopyRights();
  unit.Commit();
  m_to->Reload();
}

void CatalogCopy::CopyRights() {
  const Bytes fromAdmin = CatalogWriter(*m_from).FindAccounts().admin;
  const Bytes toAdmin = CatalogWriter(*m_to).FindAccounts().admin;
  // Accounts of two bytes are masked, with the same bytes in all of a file.
  const auto copyOf = [&](Bytes account) {
    if (account.size() != fromAdmin.size()) return account;
    for (std::size_t i = 0; i < account.size(); ++i)
      account[i] ^= fromAdmin[i] ^ toAdmin[i];
    return account;
  };
  const auto keyOf = [](const PlacedRow& right) {
    return std::pair(right.Id("ObjectId"), right.Text("SID"));
  };
  Table& rights = m_to->TableAt(system_page::kAccessRights);
  std::map<std::pair<std::uint32_t, std::string>, RowId> present;
  for (const PlacedRow& right : RowsOf(*m_to, system_page::kAccessRights))
    present.emplace(keyOf(right), right.place);
  for (PlacedRow& right : RowsOf(*m_from, system_page::kAccessRights)) {
    const std::uint32_t object = CopyOf(right.Id("ObjectId"));
    if (object == 0) continue;
    right.SetId("ObjectId", object);
    if (const auto sid = right.values.find("SID"); sid != right.values.end()) {
      if (const auto* const account = sid->second.As<Bytes>()) sid->second = copyOf(*account);
    }
    const auto found = present.find(keyOf(right));
    if (found == present.end()) {
      Add(*m_to, system_page::kAccessRights, right);
    } else {
      right.values.erase("ObjectId");
      rights.Update(found->second, ValuesFor(rights, right.values));
      present.erase(found);  // a further right of the account on the object is a separate row
    }
  }
}

}  // namespace jet
