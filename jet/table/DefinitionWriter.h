#pragma once

#include "jet/file/Pager.h"
#include "jet/format/TableDefinition.h"
#include "jet/format/TableDefinitionCodec.h"
#include "jet/table/PageAllocator.h"

/// Puts table definitions, and what they point to, into the file. All of it inside a change unit.
namespace jet {

/// Gives a definition what it still lacks (its pointers are 0): usage maps for the table, its long-value
/// columns and its indexes, and for each index an empty leaf as its root. The maps' rows are put on
/// `mapPage`, and when that is full on pages of their own; 0: on a new page.
void CompleteDefinition(Pager& pager, PageAllocator& allocator, format::TableDefinition& definition,
                        PageNumber mapPage);

/// Writes a definition to its pages; takes more pages, and adds them to `definition.pages`, when they do not
/// suffice. The first page, `definition.page`, must be among them.
void WriteDefinition(Pager& pager, PageAllocator& allocator, format::TableDefinition& definition,
                     const format::DefinitionCounts& counts);

/// A new empty page for the rows of usage maps.
PageNumber NewMapPage(PageAllocator& allocator);

}  // namespace jet
