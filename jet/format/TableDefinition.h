#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "jet/Value.h"

namespace jet::format {

/// A column as the table definition describes it (25 bytes and a name).
struct ColumnDefinition {
  std::string name;
  ColumnType type = ColumnType::Long;
  std::uint16_t number = 0;  ///< position in the null mask; never used again after the column is deleted
  std::uint16_t variableIndex =
      0;  ///< place in the variable table; for fixed columns the variable columns before it
  std::uint16_t ordinal = 0;          ///< position for display
  std::uint16_t fixedOffset = 0;      ///< fixed columns: counted from byte 2 of the row
  std::uint16_t size = 0;             ///< bytes: yes/no 1, text 2 a character, memo and OLE 0
  std::uint8_t flags = 0;             ///< column_flag
  std::uint8_t precision = 0;         ///< decimal
  std::uint8_t scale = 0;             ///< decimal
  std::uint16_t sortLocale = 0x0409;  ///< text: LCID of the sort order
  std::uint8_t sortVariant = 0;       ///< text: upper half of the LCID
  std::uint8_t sortVersion = 0;       ///< text: 0 is General Legacy
  bool compressed = false;            ///< text may be stored with a byte a character
  std::uint8_t otherFlags = 0;        ///< what stands beside `compressed`; kept

  bool IsFixed() const { return (flags & 0x01) != 0; }
  bool IsAutoNumber() const { return (flags & 0x04) != 0; }
  bool IsAutoGuid() const { return (flags & 0x40) != 0 && type == ColumnType::Guid; }
  bool IsLongValue() const { return type == ColumnType::Memo || type == ColumnType::Ole; }
};

struct IndexColumnDefinition {
  std::uint16_t column = 0;  ///< the column's number (not its place in the list)
  bool ascending = true;
};

/// A real index: a B-tree (52 bytes, and 12 bytes of counts).
struct IndexDefinition {
  std::vector<IndexColumnDefinition> columns;  ///< 1 to 10
  std::uint32_t usageMap = 0;                  ///< row pointer
  std::uint32_t root = 0;                      ///< page
  std::uint8_t flags = 0;                      ///< index_flag
  bool IsUnique() const { return (flags & 0x01) != 0; }
  bool IgnoresNulls() const { return (flags & 0x02) != 0; }
  bool IsRequired() const { return (flags & 0x08) != 0; }
};

/// A logical index: a name and a purpose for a real one (28 bytes and a name).
struct LogicalIndexDefinition {
  enum class Side : std::uint8_t { None = 0, Parent = 1, Child = 2 };
  enum class Kind : std::uint8_t { Plain = 0, Primary = 1, Relation = 2 };
  std::string name;
  std::uint32_t number = 0;  ///< unique in the table
  std::uint32_t real = 0;    ///< which real index backs it
  Side side = Side::None;
  std::uint32_t partnerNumber = 0xFFFFFFFF;  ///< logical number in the other table
  std::uint32_t partnerTable = 0;            ///< definition page of the other table
  std::uint8_t cascadeUpdates = 4;           ///< 0 or 1; 4 when not a relationship
  std::uint8_t cascadeDeletes = 4;
  Kind kind = Kind::Plain;
};

/// Usage maps of one long-value column (10 bytes).
struct LongValueMaps {
  std::uint16_t column = 0;  ///< the column's number
  std::uint32_t owned = 0;   ///< row pointer; 0 none
  std::uint32_t free = 0;    ///< row pointer; 0 none
};

/// A table definition, all of its pages. Counts that change with every row are not here: they are read and
/// written in place (definition_page offsets).
struct TableDefinition {
  std::uint32_t page = 0;            ///< first definition page; the table's id in the catalog
  std::vector<std::uint32_t> pages;  ///< all definition pages in order
  bool isSystem = false;
  std::uint16_t columnsEver = 0;  ///< "highest column count": goes into each new row
  std::uint16_t variableColumnsEver = 0;
  std::vector<ColumnDefinition> columns;  ///< in the order of the file
  std::vector<IndexDefinition> indexes;
  std::vector<LogicalIndexDefinition> logicalIndexes;
  std::vector<LongValueMaps> longValueMaps;
  std::uint32_t ownedPages = 0;  ///< row pointer of the owned-pages map
  std::uint32_t freePages = 0;   ///< row pointer of the free-space map
};

}  // namespace jet::format
