#include "jet/format/RedoLogLayout.h"

#include <algorithm>
#include <string_view>

#include "jet/format/Bytes.h"
#include "jet/format/Checksum.h"

namespace jet::format {
namespace {

constexpr std::uint32_t kLogVersion = 3;
constexpr std::string_view kHeaderMark("jet redo log\0\0\0\0", 16);

namespace header_layout {
constexpr std::size_t kVersionAt = 16;
constexpr std::size_t kPageSizeAt = 20;
constexpr std::size_t kPageCount = 24;
constexpr std::size_t kSalt = 32;
constexpr std::size_t kSum = 40;  // of what stands before it
}  // namespace header_layout

namespace unit_layout {
constexpr std::size_t kSequence = 4;
constexpr std::size_t kSalt = 8;
constexpr std::size_t kPages = 16;
constexpr std::size_t kPageCount = 20;
constexpr std::size_t kFlags = 24;
constexpr std::uint32_t kFollowsSyncedUnits = 1;
}  // namespace unit_layout

namespace page_layout {
constexpr std::size_t kNumber = 0;
constexpr std::size_t kKind = 4;
constexpr std::size_t kHoleBegin = 8;
constexpr std::size_t kHoleSize = 10;
constexpr std::size_t kBefore = 12;
}  // namespace page_layout

std::uint64_t SumOf(std::span<const std::byte> bytes) {
  Checksum sum;
  sum.Add(bytes);
  return sum.Value();
}

std::span<const std::byte> Mark() {
  return std::as_bytes(std::span(kHeaderMark));
}

}  // namespace

std::uint32_t SumOfSector(std::span<const std::byte> sector) {
  return static_cast<std::uint32_t>(SumOf(sector));
}

SectorSums SumsOfSectors(std::span<const std::byte, kPageSize> page) {
  SectorSums sums;
  for (std::size_t i = 0; i < kPageSectors; ++i)
    sums[i] = SumOfSector(page.subspan(i * kSectorSize, kSectorSize));
  return sums;
}

std::array<std::byte, kSectorSize> EncodeLogHeader(const LogHeader& header) {
  namespace layout = header_layout;
  std::array<std::byte, kSectorSize> sector{};
  std::copy(Mark().begin(), Mark().end(), sector.begin());
  StoreU32(&sector[layout::kVersionAt], kLogVersion);
  StoreU32(&sector[layout::kPageSizeAt], kPageSize);
  StoreU32(&sector[layout::kPageCount], header.pageCount);
  StoreU64(&sector[layout::kSalt], header.salt);
  StoreU64(&sector[layout::kSum], SumOf(std::span(sector).first(layout::kSum)));
  return sector;
}

std::optional<LogHeader> DecodeLogHeader(std::span<const std::byte, kSectorSize> sector) {
  namespace layout = header_layout;
  if (!BeginsLikeLogHeader(sector) || LoadU32(&sector[layout::kVersionAt]) != kLogVersion ||
      LoadU32(&sector[layout::kPageSizeAt]) != kPageSize ||
      LoadU64(&sector[layout::kSum]) != SumOf(sector.first(layout::kSum))) {
    return std::nullopt;
  }
  return LogHeader{.pageCount = LoadU32(&sector[layout::kPageCount]),
                   .salt = LoadU64(&sector[layout::kSalt])};
}

bool BeginsLikeLogHeader(std::span<const std::byte> bytes) {
  const std::size_t size = std::min(bytes.size(), Mark().size());
  return std::equal(Mark().begin(), Mark().begin() + static_cast<std::ptrdiff_t>(size), bytes.begin());
}

std::array<std::byte, LogUnitHead::kSize> EncodeLogUnitHead(const LogUnitHead& head) {
  namespace layout = unit_layout;
  std::array<std::byte, LogUnitHead::kSize> bytes{};
  std::copy(LogUnitHead::kMark.begin(), LogUnitHead::kMark.end(), bytes.begin());
  StoreU32(&bytes[layout::kSequence], head.sequence);
  StoreU64(&bytes[layout::kSalt], head.salt);
  StoreU32(&bytes[layout::kPages], head.pages);
  StoreU32(&bytes[layout::kPageCount], head.pageCount);
  StoreU32(&bytes[layout::kFlags], head.followsSyncedUnits ? layout::kFollowsSyncedUnits : 0);
  return bytes;
}

std::optional<LogUnitHead> DecodeLogUnitHead(std::span<const std::byte, LogUnitHead::kSize> bytes) {
  namespace layout = unit_layout;
  if (!std::equal(LogUnitHead::kMark.begin(), LogUnitHead::kMark.end(), bytes.begin())) return std::nullopt;
  return LogUnitHead{
      .sequence = LoadU32(&bytes[layout::kSequence]),
      .salt = LoadU64(&bytes[layout::kSalt]),
      .pages = LoadU32(&bytes[layout::kPages]),
      .pageCount = LoadU32(&bytes[layout::kPageCount]),
      .followsSyncedUnits = (LoadU32(&bytes[layout::kFlags]) & layout::kFollowsSyncedUnits) != 0};
}

void EncodeLogPageHead(const LogPageHead& head, std::span<std::byte, LogPageHead::kSize> into) {
  namespace layout = page_layout;
  StoreU32(&into[layout::kNumber], head.number);
  StoreU32(&into[layout::kKind], static_cast<std::uint32_t>(head.kind));
  StoreU16(&into[layout::kHoleBegin], head.hole.begin);
  StoreU16(&into[layout::kHoleSize], head.hole.size);
  for (std::size_t i = 0; i < kPageSectors; ++i)
    StoreU32(&into[layout::kBefore + 4 * i], head.before[i]);
}

std::optional<LogPageHead> DecodeLogPageHead(std::span<const std::byte, LogPageHead::kSize> bytes) {
  namespace layout = page_layout;
  const std::uint32_t kind = LoadU32(&bytes[layout::kKind]);
  if (kind > static_cast<std::uint32_t>(LogPageHead::Kind::Witness)) return std::nullopt;
  LogPageHead head{
      .number = LoadU32(&bytes[layout::kNumber]),
      .kind = static_cast<LogPageHead::Kind>(kind),
      .hole = {.begin = LoadU16(&bytes[layout::kHoleBegin]), .size = LoadU16(&bytes[layout::kHoleSize])}};
  for (std::size_t i = 0; i < kPageSectors; ++i)
    head.before[i] = LoadU32(&bytes[layout::kBefore + 4 * i]);
  if (!head.hole.Fits()) return std::nullopt;
  return head;
}

}  // namespace jet::format
