#include "jet/format/DatabaseHeader.h"

#include <algorithm>
#include <array>
#include <bit>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"
#include "jet/format/Rc4.h"
#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

// Page 0.
//
//   0x000 signature, 4    | 0x004 name, 16        | 0x014 version, 4
//   0x018 masked area, 128 (below)
//   0x098 constant, 4     | 0x09c "4.0" and zero  | zeros | 0xe00 commit words, 2 for each of 256 users
//
// The masked area, decoded with RC4 and a fixed key:
//
//   0x018 row pointers of the global usage map and of a second, empty one, 4 each
//   0x020 definition pages of the four system tables, 4 each
//   0x03c code page, 2    | 0x03e database key, 4 | 0x042 password, 40, each byte combined with the date's
//   mask 0x06a build, 4        | 0x06e sort order: LCID, 2, and version, 2 | 0x072 creation date, double
constexpr std::array<std::uint8_t, 20> kSignature = {0,   1,   0,   0,   'S', 't', 'a', 'n', 'd', 'a',
                                                     'r', 'd', ' ', 'J', 'e', 't', ' ', 'D', 'B', 0};
constexpr std::array<std::uint8_t, 20> kAceSignature = {0,   1,   0,   0,   'S', 't', 'a', 'n', 'd', 'a',
                                                        'r', 'd', ' ', 'A', 'C', 'E', ' ', 'D', 'B', 0};
constexpr std::size_t kVersion = 0x14;
constexpr std::uint32_t kVersionJet4 = 1;
constexpr std::size_t kMaskedArea = 0x18;
constexpr std::size_t kMaskedAreaSize = 128;
constexpr std::array<std::byte, 4> kMaskedAreaKey = {std::byte{0xC7}, std::byte{0xDA}, std::byte{0x39},
                                                     std::byte{0x6B}};
constexpr std::size_t kGlobalMapPointer = 0x18;
constexpr std::size_t kSecondMapPointer = 0x1C;
constexpr std::size_t kSystemTables = 0x20;
constexpr std::size_t kCodePage = 0x3C;
constexpr std::size_t kDatabaseKey = 0x3E;
constexpr std::size_t kPassword = 0x42;
constexpr std::size_t kPasswordSize = 40;
constexpr std::size_t kBuild = 0x6A;
constexpr std::size_t kSortLocale = 0x6E;
constexpr std::size_t kSortVersion = 0x70;
constexpr std::size_t kCreated = 0x72;
constexpr std::size_t kConstant = 0x98;
constexpr std::uint32_t kConstantValue = 0x0654;
constexpr std::size_t kEngineVersion = 0x9C;
constexpr std::uint32_t kEngineVersionText = 0x00302E34;  // "4.0"
constexpr std::size_t kCommitWords = 0xE00;
constexpr std::uint16_t kCommitWordAtRest = 0x0100;
constexpr std::uint16_t kCommitWordOfTheFirstUser = 0x0101;

std::span<std::byte> MaskedArea(std::span<std::byte> page) {
  return page.subspan(kMaskedArea, kMaskedAreaSize);
}

/// Whole days of the creation date, whose bytes mask the password. False when they do not fit 32 bits.
bool DateMask(double created, std::array<std::byte, 4>& mask) {
  if (!(created > -2147483649.0 && created < 2147483648.0)) return false;
  StoreU32(mask.data(), static_cast<std::uint32_t>(static_cast<std::int32_t>(created)));
  return true;
}

double LoadCreated(const std::byte* page) {
  return std::bit_cast<double>(LoadU64(page + kCreated));
}

/// Puts the password into a page whose masked area is decoded.
void PutPassword(std::span<std::byte> page, std::string_view password) {
  const std::u16string units = Utf8ToUtf16(password);
  if (units.size() * 2 > kPasswordSize) {
    throw Error(
        ErrorNumber::InvalidDefinition,
        "A database password has at most 20 characters; this one has " + std::to_string(units.size()) + ".");
  }
  if (units.find(u'\0') != std::u16string::npos) {
    throw Error(ErrorNumber::InvalidDefinition, "A database password cannot hold a zero character.");
  }
  std::array<std::byte, 4> mask{};
  if (!DateMask(LoadCreated(page.data()), mask)) {
    throw Error(ErrorNumber::InvalidDefinition, "The creation date of the database is no date.");
  }
  std::array<std::byte, kPasswordSize> field{};
  for (std::size_t i = 0; i < units.size(); ++i)
    StoreU16(field.data() + 2 * i, units[i]);
  for (std::size_t i = 0; i < field.size(); ++i)
    page[kPassword + i] = field[i] ^ mask[i % mask.size()];
}

std::string TakePassword(std::span<const std::byte> page, const std::array<std::byte, 4>& mask) {
  std::u16string units;
  for (std::size_t i = 0; i < kPasswordSize; i += 2) {
    const std::array<std::byte, 2> unit = {page[kPassword + i] ^ mask[i % mask.size()],
                                           page[kPassword + i + 1] ^ mask[(i + 1) % mask.size()]};
    const std::uint16_t value = LoadU16(unit.data());
    if (value == 0) break;
    units.push_back(static_cast<char16_t>(value));
  }
  return Utf16ToUtf8(units);
}

bool HasSignature(std::span<const std::byte> page, std::span<const std::uint8_t> signature) {
  return page.size() >= signature.size() &&
         std::equal(signature.begin(), signature.end(), page.begin(),
                    [](std::uint8_t wanted, std::byte found) { return std::byte{wanted} == found; });
}

constexpr const char* kIsAce = "is a database of the newer generation ACE; only Jet 4 can be opened";

[[noreturn]] void RaiseNotADatabase(const std::string& fileName, const char* why) {
  throw Error(ErrorNumber::NotADatabase, "The file '" + fileName + "' " + why + ".");
}

}  // namespace

DatabaseHeader DecodeDatabaseHeader(std::span<const std::byte> page, const std::string& fileName) {
  if (HasSignature(page, kAceSignature)) RaiseNotADatabase(fileName, kIsAce);
  if (!HasSignature(page, kSignature)) RaiseNotADatabase(fileName, "is not a Jet database");
  if (page.size() < kPageSize) RaiseNotADatabase(fileName, "is too short to be a Jet database");
  const std::uint32_t version = LoadU32(page.data() + kVersion);
  if (version < kVersionJet4)
    RaiseNotADatabase(fileName, "is a database of the older version Jet 3; only Jet 4 can be opened");
  if (version > kVersionJet4) RaiseNotADatabase(fileName, kIsAce);

  std::array<std::byte, kPageSize> plain{};
  std::copy_n(page.begin(), kPageSize, plain.begin());
  ApplyRc4(kMaskedAreaKey, MaskedArea(plain));
  DatabaseHeader header;
  header.databaseKey = LoadU32(plain.data() + kDatabaseKey);
  header.created = LoadCreated(plain.data());
  header.build = LoadU32(plain.data() + kBuild);
  header.codePage = LoadU16(plain.data() + kCodePage);
  header.sortLocale = LoadU16(plain.data() + kSortLocale);
  header.sortVersion = LoadU16(plain.data() + kSortVersion);
  std::array<std::byte, 4> mask{};
  if (!DateMask(header.created, mask)) {
    throw Error(ErrorNumber::DamagedFile,
                "The header of the file '" + fileName + "' is damaged: its creation date is no date.");
  }
  header.password = TakePassword(plain, mask);
  return header;
}

void EncodeDatabaseHeader(const DatabaseHeader& header, std::span<std::byte> page) {
  std::fill(page.begin(), page.end(), std::byte{0});
  std::byte* const bytes = page.first<kPageSize>().data();
  std::transform(kSignature.begin(), kSignature.end(), page.begin(),
                 [](std::uint8_t b) { return std::byte{b}; });
  StoreU32(bytes + kVersion, kVersionJet4);
  StoreU32(bytes + kGlobalMapPointer, MakeRowPointer(system_page::kGlobalUsageMap, 0));
  StoreU32(bytes + kSecondMapPointer, MakeRowPointer(system_page::kGlobalUsageMap, 1));
  for (std::uint32_t i = 0; i < 4; ++i)
    StoreU32(bytes + kSystemTables + 4 * i, system_page::kObjects + i);
  StoreU16(bytes + kCodePage, header.codePage);
  StoreU32(bytes + kDatabaseKey, header.databaseKey);
  StoreU32(bytes + kBuild, header.build);
  StoreU16(bytes + kSortLocale, header.sortLocale);
  StoreU16(bytes + kSortVersion, header.sortVersion);
  StoreU64(bytes + kCreated, std::bit_cast<std::uint64_t>(header.created));
  PutPassword(page, header.password);
  ApplyRc4(kMaskedAreaKey, MaskedArea(page));
  StoreU32(bytes + kConstant, kConstantValue);
  StoreU32(bytes + kEngineVersion, kEngineVersionText);
  for (std::size_t at = kCommitWords; at < kPageSize; at += 2)
    StoreU16(bytes + at, kCommitWordAtRest);
  StoreU16(bytes + kCommitWords, kCommitWordOfTheFirstUser);
}

void StorePassword(std::span<std::byte> page, std::string_view password) {
  std::array<std::byte, kPageSize> plain{};
  std::copy_n(page.begin(), kPageSize, plain.begin());
  ApplyRc4(kMaskedAreaKey, MaskedArea(plain));
  PutPassword(plain, password);
  ApplyRc4(kMaskedAreaKey, MaskedArea(plain));
  std::copy(plain.begin(), plain.end(), page.begin());  // only now: a refused password changes nothing
}

}  // namespace jet::format
