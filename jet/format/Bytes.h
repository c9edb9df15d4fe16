#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "jet/Error.h"

/// Loads and stores of integers in bytes, and a bounds-checked reader. The file's integers are little-endian;
/// those in index entries are big-endian.
namespace jet::format {

inline std::uint8_t LoadU8(const std::byte* p) {
  return std::to_integer<std::uint8_t>(*p);
}
inline std::uint16_t LoadU16(const std::byte* p) {
  return static_cast<std::uint16_t>(LoadU8(p) | (LoadU8(p + 1) << 8));
}
inline std::uint32_t LoadU24(const std::byte* p) {
  return static_cast<std::uint32_t>(LoadU8(p)) | (static_cast<std::uint32_t>(LoadU8(p + 1)) << 8) |
         (static_cast<std::uint32_t>(LoadU8(p + 2)) << 16);
}
inline std::uint32_t LoadU32(const std::byte* p) {
  return LoadU24(p) | (static_cast<std::uint32_t>(LoadU8(p + 3)) << 24);
}
inline std::uint64_t LoadU64(const std::byte* p) {
  return LoadU32(p) | (std::uint64_t{LoadU32(p + 4)} << 32);
}
inline std::uint32_t LoadBigU24(const std::byte* p) {
  return (static_cast<std::uint32_t>(LoadU8(p)) << 16) | (static_cast<std::uint32_t>(LoadU8(p + 1)) << 8) |
         LoadU8(p + 2);
}
inline std::uint32_t LoadBigU32(const std::byte* p) {
  return (static_cast<std::uint32_t>(LoadU8(p)) << 24) | LoadBigU24(p + 1);
}
inline std::uint64_t LoadBigU64(const std::byte* p) {
  return (std::uint64_t{LoadBigU32(p)} << 32) | LoadBigU32(p + 4);
}

inline void StoreU8(std::byte* p, std::uint8_t v) {
  *p = std::byte{v};
}
inline void StoreU16(std::byte* p, std::uint16_t v) {
  StoreU8(p, static_cast<std::uint8_t>(v));
  StoreU8(p + 1, static_cast<std::uint8_t>(v >> 8));
}
inline void StoreU24(std::byte* p, std::uint32_t v) {
  StoreU16(p, static_cast<std::uint16_t>(v));
  StoreU8(p + 2, static_cast<std::uint8_t>(v >> 16));
}
inline void StoreU32(std::byte* p, std::uint32_t v) {
  StoreU16(p, static_cast<std::uint16_t>(v));
  StoreU16(p + 2, static_cast<std::uint16_t>(v >> 16));
}
inline void StoreU64(std::byte* p, std::uint64_t v) {
  StoreU32(p, static_cast<std::uint32_t>(v));
  StoreU32(p + 4, static_cast<std::uint32_t>(v >> 32));
}
inline void StoreBigU24(std::byte* p, std::uint32_t v) {
  StoreU8(p, static_cast<std::uint8_t>(v >> 16));
  StoreU8(p + 1, static_cast<std::uint8_t>(v >> 8));
  StoreU8(p + 2, static_cast<std::uint8_t>(v));
}
inline void StoreBigU32(std::byte* p, std::uint32_t v) {
  StoreU8(p, static_cast<std::uint8_t>(v >> 24));
  StoreBigU24(p + 1, v);
}

/// Row pointers in pages other than index pages: slot in the low byte, page above it.
inline constexpr std::uint32_t MakeRowPointer(std::uint32_t page, std::uint8_t slot) {
  return page << 8 | slot;
}
inline constexpr std::uint32_t RowPointerPage(std::uint32_t pointer) {
  return pointer >> 8;
}
inline constexpr std::uint8_t RowPointerSlot(std::uint32_t pointer) {
  return static_cast<std::uint8_t>(pointer);
}

/// Reads bytes of a file, which are hostile, in order. Every read past the end raises DamagedFile with a
/// sentence that names what was being read. Borrows the bytes.
class ByteReader {
 public:
  ByteReader(std::span<const std::byte> bytes, std::string what) : m_bytes(bytes), m_what(std::move(what)) {}

  std::size_t Position() const { return m_position; }
  std::size_t Remaining() const { return m_bytes.size() - m_position; }
  void Seek(std::size_t position) {
    if (position > m_bytes.size()) RaiseShort();
    m_position = position;
  }
  void Skip(std::size_t count) { Take(count); }
  std::span<const std::byte> Take(std::size_t count) {
    if (count > Remaining()) RaiseShort();
    const auto piece = m_bytes.subspan(m_position, count);
    m_position += count;
    return piece;
  }
  std::uint8_t U8() { return LoadU8(Take(1).data()); }
  std::uint16_t U16() { return LoadU16(Take(2).data()); }
  std::uint32_t U32() { return LoadU32(Take(4).data()); }
  std::uint64_t U64() { return LoadU64(Take(8).data()); }

 private:
  [[noreturn]] void RaiseShort() const {
    throw Error(ErrorNumber::DamagedFile, "The " + m_what + " is damaged: it ends too early.");
  }
  std::span<const std::byte> m_bytes;
  std::string m_what;
  std::size_t m_position = 0;
};

}  // namespace jet::format
