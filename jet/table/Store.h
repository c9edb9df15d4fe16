#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "jet/Value.h"
#include "jet/file/File.h"
#include "jet/file/Pager.h"
#include "jet/format/DatabaseHeader.h"
#include "jet/table/PageAllocator.h"
#include "jet/table/RowRules.h"
#include "jet/table/Table.h"

namespace jet {

/// A table as the catalog (MSysObjects) lists it.
struct CatalogEntry {
  std::string name;
  PageNumber definition = 0;  ///< first definition page; the object's id
  std::uint32_t flags = 0;
  RowId row;  ///< of the catalog itself; page 0 for the catalog's own entry before it is read
};

/// One open database file below the statements: its pages, its catalog and its tables.
///
/// Owns everything; tables stay where they are until it goes. Closing makes the file whole; a Store that goes
/// without Close does so too, but keeps silent when that fails.
class Store {
 public:
  /// Takes over an open file, not started yet, and reads its header and catalog. Raises NotADatabase,
  /// PasswordRejected, DamagedFile.
  static std::unique_ptr<Store> Open(std::unique_ptr<PageStore> pages, std::string_view password,
                                     std::size_t cacheBytes);
  /// Takes over a file whose header and system tables have been laid out by way of `pager`. Raises
  /// DamagedFile.
  static std::unique_ptr<Store> Adopt(std::unique_ptr<Pager> pager, format::DatabaseHeader header);
  ~Store();

  const std::string& FileName() const { return m_pager->FileName(); }
  const format::DatabaseHeader& Header() const { return m_header; }

  /// The table of that name, in any case; nullptr when there is none. Definitions are read on first use.
  Table* FindTable(std::string_view name);
  /// The table with that definition page. Raises DamagedFile when there is none.
  Table& TableAt(PageNumber definition);
  /// Names of all tables, system ones too, in the order of the catalog.
  std::vector<std::string> TableNames() const;
  const std::vector<CatalogEntry>& Catalog() const { return m_catalog; }

  /// Has tables evaluate their validation rules by `make`. Without it changes of tables that have such rules
  /// are refused.
  void UseRules(MakeRowRules make) { m_makeRules = make; }
  MakeRowRules RulesMaker() const { return m_makeRules; }

  Pager& Pages() { return *m_pager; }
  PageAllocator& Allocator() { return m_allocator; }

  /// Whether a row id into `page` noted at `moment` may name another row by now.
  bool FreedSince(PageNumber page, std::uint64_t moment) const { return m_pager->FreedSince(page, moment); }

  /// Reloads header, catalog and definitions after a change of the schema or the undoing of one.
  void Reload();
  /// Makes everything written survive a power cut, in the file itself. The Store must not be used afterwards.
  void Close();
  /// The same, and hands out the file, which is locked still.
  std::shared_ptr<File> Release();

 private:
  Store(std::unique_ptr<Pager> pager, format::DatabaseHeader header);
  void ReadCatalog();

  std::unique_ptr<Pager> m_pager;
  format::DatabaseHeader m_header;
  PageAllocator m_allocator;
  MakeRowRules m_makeRules = nullptr;
  std::vector<CatalogEntry> m_catalog;
  std::unordered_map<std::string, std::size_t> m_byName;  // folded name -> place in m_catalog
  std::map<PageNumber, std::unique_ptr<Table>> m_tables;  // by definition page, those used so far
};

/// Bytes of a table definition, first page and then the others from offset 8, cut to its length; and its
/// pages. Raises DamagedFile.
Bytes ReadDefinitionStream(Pager& pager, PageNumber first, std::vector<std::uint32_t>& pages);

}  // namespace jet
