#include "tests/fuzz/PackedFile.h"

#include <algorithm>

namespace fuzz {
namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kMostPages = 512;

/// The longest run of zeros: where it begins, and its length.
std::pair<std::size_t, std::size_t> LongestZeros(std::span<const std::byte> page) {
  std::pair<std::size_t, std::size_t> longest{page.size(), 0};
  for (std::size_t at = 0, begin = 0; at < page.size(); ++at) {
    if (page[at] != std::byte{0}) begin = at + 1;
    if (at + 1 - begin > longest.second) longest = {begin, at + 1 - begin};
  }
  return longest;
}

}  // namespace

std::vector<std::byte> Unpack(Input input) {
  const auto bytes = std::as_bytes(input);
  if (bytes.empty()) return {};
  if (std::to_integer<int>(bytes[0]) % 2 == 1) return {bytes.begin() + 1, bytes.end()};
  std::vector<std::byte> file;
  std::size_t at = 1;
  const auto number = [&] {
    const std::size_t value =
        std::to_integer<std::size_t>(bytes[at]) | std::to_integer<std::size_t>(bytes[at + 1]) << 8;
    at += 2;
    return value;
  };
  while (at + 4 <= bytes.size() && file.size() < kMostPages * kPage) {
    const std::size_t head = std::min({number(), kPage, bytes.size()});
    const std::size_t tail = std::min({number(), kPage - head, bytes.size()});
    const std::size_t begin = file.size();
    file.resize(begin + kPage);
    const auto take = [&](std::size_t length, std::size_t to) {
      length = std::min(length, bytes.size() - at);
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), length,
                  file.begin() + static_cast<std::ptrdiff_t>(to));
      at += length;
    };
    take(head, begin);
    take(tail, begin + kPage - tail);
  }
  return file;
}

std::vector<std::byte> Pack(std::span<const std::byte> file) {
  std::vector<std::byte> packed{std::byte{0}};
  for (std::size_t begin = 0; begin + kPage <= file.size(); begin += kPage) {
    const auto page = file.subspan(begin, kPage);
    const auto [head, zeros] = LongestZeros(page);
    const std::size_t tail = kPage - head - zeros;
    for (const std::size_t length : {head, tail}) {
      packed.push_back(static_cast<std::byte>(length & 0xFF));
      packed.push_back(static_cast<std::byte>(length >> 8));
    }
    packed.insert(packed.end(), page.begin(), page.begin() + static_cast<std::ptrdiff_t>(head));
    packed.insert(packed.end(), page.end() - static_cast<std::ptrdiff_t>(tail), page.end());
  }
  return packed;
}

}  // namespace fuzz
