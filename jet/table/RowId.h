#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "jet/file/PageStore.h"

namespace jet {

/// Where a row lives: the page and the slot of its home. A row that outgrew its page keeps its RowId.
struct RowId {
  PageNumber page = 0;  ///< 24 bits in the file
  std::uint8_t slot = 0;
  friend auto operator<=>(const RowId&, const RowId&) = default;
};

}  // namespace jet

template <>
struct std::hash<jet::RowId> {
  std::size_t operator()(const jet::RowId& row) const noexcept {
    return (std::size_t{row.page} << 8) | row.slot;
  }
};
