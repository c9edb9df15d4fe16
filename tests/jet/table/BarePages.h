#pragma once

#include <array>
#include <memory>

#include "jet/file/Pager.h"
#include "jet/format/DataPage.h"
#include "jet/table/PageAllocator.h"
#include "tests/support/MemoryFileSystem.h"

namespace jet::test {

/// A file in memory with nothing but a header page of zeros, the global usage map, one page for usage maps
/// and the rest of the pages that every database has: ground for tests of what lies below tables.
class BarePages {
 public:
  BarePages()
      : pager(std::make_unique<PageStore>(files.Open("f", NewFile()), "f"), std::size_t{8} << 20),
        allocator(pager) {
    ChangeUnit unit(pager);
    pager.Append();
    const MutablePage global = pager.Append();
    format::DataPage::Initialize(global.Bytes(), format::data_page::kOwnerGlobalMap);
    format::DataPage page(global.Bytes(), 1);
    std::array<std::byte, 69> row{};
    row.fill(std::byte{0xFF});
    for (std::size_t i = 0; i < 5; ++i)
      row[i] = std::byte{0};
    row[5] = std::byte{0xFC};  // pages 0 and 1 are in use
    page.Insert(row);
    page.Insert(std::array<std::byte, 69>{});
    const MutablePage maps = allocator.Allocate();
    format::DataPage::Initialize(maps.Bytes(), format::data_page::kOwnerUsageMaps);
    while (pager.PageCount() <= format::system_page::kRelationships)
      allocator.Allocate();  // pages that are never given away
    unit.Commit();
  }

  static OpenMode NewFile() {
    OpenMode mode;
    mode.create = true;
    return mode;
  }

  /// Page of the usage maps.
  static constexpr PageNumber kMapPage = 2;

  MemoryFileSystem files;
  Pager pager;
  PageAllocator allocator;
};

}  // namespace jet::test
