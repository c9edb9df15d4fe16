#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace jet {

/// A 64-bit checksum of bytes that detects torn and foreign writes. Not cryptographic.
///
/// Four lanes of 64 bits, so that a page costs well under a microsecond. Depends on the machine's byte order:
/// for files that do not leave the machine.
class Checksum {
 public:
  explicit Checksum(std::uint64_t seed = 0)
      : m_lanes{seed ^ kPrimes[0], seed + kPrimes[1], ~seed, seed * kPrimes[2]} {}

  /// Goes on with more bytes; how they are cut into calls counts.
  void Add(std::span<const std::byte> bytes) {
    const std::byte* from = bytes.data();
    std::size_t left = bytes.size();
    for (; left >= sizeof m_lanes; left -= sizeof m_lanes, from += sizeof m_lanes) {
      std::uint64_t words[4];
      std::memcpy(words, from, sizeof words);
      for (int lane = 0; lane < 4; ++lane)
        Mix(m_lanes[lane], words[lane]);
    }
    std::uint64_t words[4] = {left, 0, 0, 0};
    for (int lane = 0; left > 0; ++lane) {
      const std::size_t part = left < 8 ? left : 8;
      std::uint64_t word = 0;
      std::memcpy(&word, from, part);
      words[lane] ^= word * kPrimes[3];
      from += part;
      left -= part;
    }
    for (int lane = 0; lane < 4; ++lane)
      Mix(m_lanes[lane], words[lane]);
  }

  std::uint64_t Value() const {
    std::uint64_t value = kPrimes[3];
    for (const std::uint64_t lane : m_lanes)
      Mix(value, lane ^ (lane >> 29));
    return value ^ (value >> 32);
  }

 private:
  static constexpr std::uint64_t kPrimes[4] = {0x9E3779B185EBCA87, 0xC2B2AE3D27D4EB4F, 0x165667B19E3779F9,
                                               0x27D4EB2F165667C5};

  static void Mix(std::uint64_t& lane, std::uint64_t word) {
    lane ^= word * kPrimes[1];
    lane = ((lane << 31) | (lane >> 33)) * kPrimes[0];
  }

  std::uint64_t m_lanes[4];
};

}  // namespace jet
