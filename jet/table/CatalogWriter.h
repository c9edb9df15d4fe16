#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Value.h"
#include "jet/table/Table.h"

namespace jet {

class Store;

/// Fixed ids and types of the catalog (MSysObjects).
namespace catalog {
inline constexpr std::uint32_t kRoot = 0x0F000000;
inline constexpr std::uint32_t kTables = 0x0F000001;
inline constexpr std::uint32_t kDatabases = 0x0F000002;
inline constexpr std::uint32_t kRelationships = 0x0F000003;
inline constexpr std::uint32_t kDatabase = 0x10000000;
inline constexpr std::uint32_t kFirstOtherId = 0x80000000;
inline constexpr std::uint32_t kSystemFlag = 0x80000000;
inline constexpr std::int32_t kTypeTable = 1;
inline constexpr std::int32_t kTypeDatabase = 2;
inline constexpr std::int32_t kTypeContainer = 3;
inline constexpr std::int32_t kTypeRelationship = 8;
inline constexpr std::uint32_t kNotEnforced = 0x2;  ///< attribute of a relationship (column grbit)
}  // namespace catalog

/// The four accounts that rights are given to, as a file writes them. Files differ in a mask, which does not
/// follow from anything known; within one file the four differ in the same bits as everywhere.
struct Accounts {
  Bytes engine;
  Bytes admin;
  Bytes users;
  Bytes creator;

  /// The other three follow from the two bytes of the administrator's.
  static Accounts FromAdmin(std::span<const std::byte> admin);
};

/// An object that the catalog should list.
struct CatalogObject {
  std::uint32_t id = 0;
  std::uint32_t parent = catalog::kTables;
  std::string name;
  std::int32_t type = catalog::kTypeTable;
  std::uint32_t flags = 0;
  Bytes owner;
  Bytes properties;  ///< LvProp; empty: Null
};

/// A right of an account on an object (a row of MSysACEs).
struct AccessRight {
  std::uint32_t object = 0;
  Bytes account;
  std::uint32_t rights = 0;
  bool inheritable = false;
};

/// Adds rows to the system tables of a database. Lives for one change of the schema, inside a change unit.
class CatalogWriter {
 public:
  explicit CatalogWriter(Store& store);

  /// Accounts of the file, found from the owners of its objects.
  Accounts FindAccounts() const;
  /// Whether the catalog lists an object of that name, in any case, under `parent`.
  bool Has(std::uint32_t parent, std::string_view name) const;
  /// An id for an object that is no table: numbers count up from 0x80000000.
  std::uint32_t NextId() const;

  void AddObject(const CatalogObject& object);
  void AddRight(const AccessRight& right);
  /// Adds a row to a system table by the names of its columns.
  void AddRow(PageNumber page, const std::vector<std::pair<const char*, Value>>& values);
  /// Notes that the object with this id was changed now.
  void Touch(std::uint32_t id);

 private:
  Value ReadColumn(const RowRef& row, const char* column) const;

  Store* m_store;
  DateTime m_now;
};

}  // namespace jet
