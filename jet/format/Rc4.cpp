#include "jet/format/Rc4.h"

#include <array>
#include <cstdint>
#include <utility>

namespace jet::format {

void ApplyRc4(std::span<const std::byte> key, std::span<std::byte> data) {
  if (key.empty()) return;
  std::array<std::uint8_t, 256> box{};
  for (std::size_t i = 0; i < box.size(); ++i)
    box[i] = static_cast<std::uint8_t>(i);
  std::uint8_t j = 0;
  for (std::size_t i = 0; i < box.size(); ++i) {
    j = static_cast<std::uint8_t>(j + box[i] + std::to_integer<std::uint8_t>(key[i % key.size()]));
    std::swap(box[i], box[j]);
  }
  std::uint8_t i = 0;
  j = 0;
  for (std::byte& byte : data) {
    i = static_cast<std::uint8_t>(i + 1);
    j = static_cast<std::uint8_t>(j + box[i]);
    std::swap(box[i], box[j]);
    byte ^= std::byte{box[static_cast<std::uint8_t>(box[i] + box[j])]};
  }
}

}  // namespace jet::format
