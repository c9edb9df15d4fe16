#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "jet/Error.h"
#include "jet/Value.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"

namespace jet::format::test {

/// Bytes of hexadecimal digits; anything but digits is skipped.
inline Bytes FromHex(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (std::string_view("0123456789abcdef").find(c) != std::string_view::npos) digits += c;
  }
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::byte>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

inline std::string ToHex(std::span<const std::byte> bytes) {
  std::string text;
  for (const std::byte b : bytes) {
    text += "0123456789abcdef"[std::to_integer<unsigned>(b) >> 4];
    text += "0123456789abcdef"[std::to_integer<unsigned>(b) & 15];
  }
  return text;
}

/// A whole file of the folder of test data.
inline Bytes ReadTestFile(const std::string& name) {
  std::ifstream in(std::string(HALCYRA_TEST_DATA "/") + name, std::ios::binary);
  EXPECT_TRUE(in.good()) << name;
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  Bytes bytes;
  for (const char c : text)
    bytes.push_back(static_cast<std::byte>(c));
  return bytes;
}

inline std::span<std::byte> PageOf(Bytes& file, std::size_t page) {
  return std::span(file).subspan(page * kPageSize, kPageSize);
}

/// Random numbers whose seed the test prints, so that a failure can be had again (set SEED).
class Random {
 public:
  Random() {
    const char* const given = std::getenv("SEED");
    const auto seed = given != nullptr ? static_cast<unsigned>(std::stoul(given)) : std::random_device{}();
    ::testing::Test::RecordProperty("seed", std::to_string(seed));
    std::printf("seed %u\n", seed);
    m_engine.seed(seed);
  }
  /// 0 .. limit - 1.
  std::uint32_t Below(std::uint32_t limit) {
    return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(m_engine);
  }
  std::uint64_t Bits() { return m_engine(); }

 private:
  std::mt19937_64 m_engine;
};

/// The number of the error that an action raises; 0 when it raises none.
template <typename Action>
int ErrorOf(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return static_cast<int>(error.Number());
  }
  return 0;
}

constexpr int kDamaged = static_cast<int>(ErrorNumber::DamagedFile);

}  // namespace jet::format::test
