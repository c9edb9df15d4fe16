#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "jet/format/PageLayout.h"

namespace jet {

/// Number of a page of the file; page 0 is the database header.
using PageNumber = std::uint32_t;

using format::kPageSize;
/// A database file never passes 2 GiB.
inline constexpr PageNumber kMaxPages = (std::uint32_t{1} << 31) / kPageSize;

/// Where a page begins in the file.
constexpr std::uint64_t OffsetOf(PageNumber number) {
  return std::uint64_t{number} * kPageSize;
}

using PageBytes = std::array<std::byte, kPageSize>;

/// One page of a unit of changes, as it was before the unit and as it is after it.
struct ChangedPage {
  PageNumber number = 0;
  const PageBytes* before = nullptr;  ///< none: the page is new at the end of the file
  const PageBytes* after = nullptr;   ///< none: the page stays as it is (RedoLog only)
};

}  // namespace jet
