#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/check/Findings.h"
#include "jet/check/LongValueUse.h"
#include "jet/check/PageUse.h"
#include "jet/format/DataPage.h"
#include "jet/format/TableDefinition.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/table/RowId.h"
#include "jet/table/Store.h"

namespace jet::check {

/// A table as far as it could be read.
struct CheckedTable {
  Table* table = nullptr;
  std::vector<RowId> rows;  ///< live rows, ascending
  bool rowsKnown = true;    ///< false: some could not be read, so that indexes cannot be held against them
};

/// Checks one table but for its indexes: definition, usage maps, pages, rows and the values in them.
class TableCheck {
 public:
  TableCheck(Store& store, PageUse& pages, LongValueUse& longValues, Findings& findings)
      : m_store(&store), m_pages(&pages), m_longValues(&longValues), m_findings(&findings) {}

  /// None when not even the definition can be read.
  std::optional<CheckedTable> Run(const CatalogEntry& entry);

 private:
  void CheckDefinition();
  void CheckColumns();
  void CheckLogicalIndexes();
  void CheckPartner(const format::LogicalIndexDefinition& index, const std::string& where);
  void ClaimLongValuePages();
  std::vector<PageNumber> CheckMaps();
  void CheckPage(PageNumber number);
  void CheckMovedRow(RowId home, std::span<const std::byte> pointerBytes);
  void CheckRow(RowId id, std::span<const std::byte> row);
  void CheckValue(const format::ColumnDefinition& column, std::span<const std::byte> row);
  void CheckMovedRows();
  void CheckCounts();
  std::string LongValuesOf(const format::ColumnDefinition& column) const;

  Store* m_store;
  PageUse* m_pages;
  LongValueUse* m_longValues;
  Findings* m_findings;

  CheckedTable m_checked;  // the table being checked, and what is known of it
  std::string m_where;
  const format::TableDefinition* m_definition = nullptr;
  format::DefinitionCounts m_counts;
  std::vector<RowId> m_targets;    // bodies of moved rows
  std::vector<RowId> m_pointedAt;  // bodies that moved rows lead to
  std::optional<std::int32_t> m_highestAutoNumber;
};

}  // namespace jet::check
