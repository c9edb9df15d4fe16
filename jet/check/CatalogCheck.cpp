#include "jet/check/CatalogCheck.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "jet/format/NameOrder.h"
#include "jet/format/PageLayout.h"
#include "jet/format/PropertyBlob.h"

namespace jet::check {

using namespace format;

namespace {

constexpr std::int32_t kRootContainer = 0x0F000000;  // has no row
constexpr std::int32_t kTypeTable = 1;
constexpr std::int32_t kTypeRelation = 8;

std::int32_t IntegerOf(const Value& value) {
  const auto* number = value.As<std::int32_t>();
  return number == nullptr ? 0 : *number;
}

std::string TextOf(const Value& value) {
  const auto* text = value.As<std::string>();
  return text == nullptr ? std::string() : *text;
}

}  // namespace

std::vector<std::vector<Value>> ReadColumns(const CheckedTable& checked,
                                            const std::vector<std::string_view>& columns) {
  std::vector<std::size_t> places;
  for (const std::string_view name : columns) {
    const std::optional<std::size_t> place = checked.table->FindColumn(name);
    if (!place) {
      throw Error(ErrorNumber::DamagedFile,
                  "table '" + checked.table->Name() + "' has no column '" + std::string(name) + "'");
    }
    places.push_back(*place);
  }
  std::vector<std::vector<Value>> rows;
  for (const RowId id : checked.rows) {
    try {
      const std::optional<RowRef> row = checked.table->Fetch(id);
      if (!row) continue;
      std::vector<Value> values;
      for (const std::size_t place : places)
        values.push_back(checked.table->Read(*row, place));
      rows.push_back(std::move(values));
    } catch (const Error& error) {
      if (error.Number() != ErrorNumber::DamagedFile) throw;  // damage was reported with the table
    }
  }
  return rows;
}

void CatalogCheck::Run() {
  if (!m_findings->Guard("catalog", [&] { ReadObjects(); })) return;
  CheckObjects();
  m_findings->Guard("access rights", [&] { CheckRights(); });
  m_findings->Guard("relationships", [&] { CheckRelationNames(); });
}

void CatalogCheck::ReadObjects() {
  for (const PageNumber page : {system_page::kObjects, system_page::kAccessRights, system_page::kQueries,
                                system_page::kRelationships}) {
    if (m_tables->count(page) == 0) {
      m_findings->Add("catalog", "the system table of page " + std::to_string(page) + " is missing");
    }
  }
  const auto catalog = m_tables->find(system_page::kObjects);
  if (catalog == m_tables->end()) return;
  for (const auto& row : ReadColumns(catalog->second, {"Id", "ParentId", "Type", "Name", "LvProp"})) {
    const Object object{IntegerOf(row[0]), IntegerOf(row[1]), IntegerOf(row[2]), TextOf(row[3])};
    if (!m_byId.emplace(object.id, m_objects.size()).second) {
      m_findings->Add("catalog", "'" + object.name + "' has the id of another object");
    }
    m_objects.push_back(object);
    m_findings->Guard("properties of '" + object.name + "'", [&] { CheckProperties(object, row[4]); });
  }
}

void CatalogCheck::CheckProperties(const Object& object, const Value& blob) {
  const auto* bytes = blob.As<Bytes>();
  if (bytes == nullptr) return;
  const PropertyBlob properties = DecodeProperties(*bytes);
  const auto checked = m_tables->find(static_cast<PageNumber>(object.id));
  if (object.type != kTypeTable || checked == m_tables->end()) return;
  const Table& table = *checked->second.table;
  const auto& indexes = table.Definition().logicalIndexes;
  for (const PropertyBlob::Block& block : properties.blocks) {
    if (block.kind != PropertyBlob::kColumnBlock || block.owner.empty() || table.FindColumn(block.owner))
      continue;
    const bool isIndex = std::any_of(indexes.begin(), indexes.end(),
                                     [&](const auto& index) { return SameName(index.name, block.owner); });
    if (!isIndex)
      m_findings->Add("properties of '" + object.name + "'",
                      "name the column '" + block.owner + "', which is none");
  }
}

void CatalogCheck::CheckObjects() {
  std::set<std::pair<std::int32_t, std::string>> names;
  for (const Object& object : m_objects) {
    if (!names.emplace(object.parent, FoldName(object.name)).second) {
      m_findings->Add("catalog", "two objects of one kind are called '" + object.name + "'");
    }
    if (object.parent != kRootContainer && !m_byId.contains(object.parent)) {
      m_findings->Add("catalog", "'" + object.name + "' is in a container that does not exist");
    }
  }
}

void CatalogCheck::CheckRights() {
  const auto rights = m_tables->find(system_page::kAccessRights);
  if (rights == m_tables->end()) return;
  for (const auto& row : ReadColumns(rights->second, {"ObjectId"})) {
    if (!m_byId.contains(IntegerOf(row[0]))) {
      m_findings->Add("access rights",
                      "are given for object " + std::to_string(IntegerOf(row[0])) + ", which does not exist");
    }
  }
}

void CatalogCheck::CheckRelationNames() {
  const auto relations = m_tables->find(system_page::kRelationships);
  if (relations == m_tables->end()) return;
  std::set<std::string> stored;
  for (const auto& row : ReadColumns(relations->second, {"szRelationship"}))
    stored.insert(FoldName(TextOf(row[0])));
  std::set<std::string> listed;
  for (const Object& object : m_objects) {
    if (object.type == kTypeRelation) listed.insert(FoldName(object.name));
  }
  for (const std::string& name : stored) {
    if (!listed.contains(name)) m_findings->Add("relationship '" + name + "'", "is not in the catalog");
  }
  for (const std::string& name : listed) {
    if (!stored.contains(name))
      m_findings->Add("relationship '" + name + "'", "is in the catalog and has no columns");
  }
}

}  // namespace jet::check
