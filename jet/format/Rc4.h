#pragma once

#include <cstddef>
#include <span>

namespace jet::format {

/// Codes or decodes `data` in place with the RC4 stream of `key` (the same step does both). Does nothing
/// without a key.
void ApplyRc4(std::span<const std::byte> key, std::span<std::byte> data);

}  // namespace jet::format
