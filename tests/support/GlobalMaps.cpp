#include "tests/support/GlobalMaps.h"

#include <algorithm>
#include <span>

#include "jet/format/Bytes.h"
#include "jet/format/DataPage.h"
#include "jet/format/UsageMapRow.h"

namespace jet::test {

using namespace format;

std::vector<std::byte> WithGlobalMapFrom(std::vector<std::byte> file, std::uint32_t first) {
  constexpr std::uint32_t kMoreFreePages = 3;
  const auto oldCount = static_cast<std::uint32_t>(file.size() / kPageSize);
  const std::uint32_t pageCount = std::max(oldCount, first + kMoreFreePages);
  file.resize(std::size_t{pageCount} * kPageSize);
  const std::span<std::byte> mapPage{file.data() + kPageSize, kPageSize};
  DataPage page(mapPage, 1);
  const std::vector<std::byte> old(page.Row(0).begin(), page.Row(0).end());
  std::vector<std::byte> row(usage_map::kNewRowBytes);
  StoreU32(row.data() + usage_map::kFirstPage, first);
  for (std::uint32_t bit = 0; bit < 8 * (row.size() - usage_map::kBitmap); ++bit) {
    const bool wasFree = first + bit >= oldCount ||
                         TestBit(std::span<const std::byte>(old).subspan(usage_map::kBitmap), first + bit);
    AssignBit(std::span<std::byte>(row).subspan(usage_map::kBitmap), bit, wasFree);
  }
  page.Replace(0, row, data_page::kLive);
  return file;
}

}  // namespace jet::test
