#include "jet/format/TextCodec.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "jet/Error.h"
#include "jet/Text.h"
#include "jet/format/Bytes.h"

namespace jet::format {
namespace {

// Compressed text: ff fe, then alternating runs. In a run of bytes each byte is a character U+0001..U+00FF;
// in a run of words each two bytes are a UTF-16 unit. A zero byte (in a run of words: where a unit's low byte
// would be) ends the run and begins one of the other kind. The first run is one of bytes.
constexpr std::byte kCompressedMark0{0xFF};
constexpr std::byte kCompressedMark1{0xFE};
constexpr std::size_t kMarkSize = 2;
constexpr char16_t kMarkAsUnit = 0xFEFF;
constexpr std::byte kSwitch{0x00};

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr std::uint64_t kHighBits = 0x8080808080808080;

/// A bit set for each byte of a word that is not the code of an ASCII character, or is 0.
std::uint64_t NotAscii(std::uint64_t word) {
  // (b & 0x7f) + 0x7f has its high bit set exactly when b's low bits are not 0.
  constexpr std::uint64_t kOtherBits = 0x7F7F7F7F7F7F7F7F;
  return (word | ~((word & kOtherBits) + kOtherBits)) & kHighBits;
}

template <typename Word>
std::uint64_t LoadWord(const std::byte* from) {
  Word word = 0;
  std::memcpy(&word, from, sizeof word);
  return word;
}

/// Whether the bytes are the codes of ASCII characters, none of them 0.
bool AllAscii(std::span<const std::byte> bytes) {
  const std::byte* const data = bytes.data();
  const std::size_t size = bytes.size();
  // The last word overlaps the one before it.
  if (size >= 8) {
    std::uint64_t found = NotAscii(LoadWord<std::uint64_t>(data + size - 8));
    for (std::size_t at = 0; at + 8 < size; at += 8)
      found |= NotAscii(LoadWord<std::uint64_t>(data + at));
    return found == 0;
  }
  if (size >= 4) {
    return NotAscii(LoadWord<std::uint32_t>(data) << 32 | LoadWord<std::uint32_t>(data + size - 4)) == 0;
  }
  return std::all_of(bytes.begin(), bytes.end(),
                     [](std::byte b) { return b > kSwitch && b < std::byte{0x80}; });
}

/// Joins surrogate pairs of a stream of UTF-16 units into UTF-8.
class Utf8Writer {
 public:
  explicit Utf8Writer(std::string& into, LoneSurrogates lone = LoneSurrogates::Replace)
      : m_into(into), m_keepsLone(lone == LoneSurrogates::Keep) {}
  ~Utf8Writer() = default;
  Utf8Writer(const Utf8Writer&) = delete;
  Utf8Writer& operator=(const Utf8Writer&) = delete;

  void Put(char32_t unit) {
    if (m_high != 0 || IsHighSurrogate(unit) || IsLowSurrogate(unit)) {
      PutAfterOrAsSurrogate(unit);
    } else if (unit < 0x80) {
      m_into.push_back(static_cast<char>(unit));
    } else {
      AppendUtf8(unit, m_into);
    }
  }
  void Finish() {
    if (m_high != 0) PutLone(m_high);
    m_high = 0;
  }

 private:
  void PutAfterOrAsSurrogate(char32_t unit);
  void PutLone(char32_t surrogate) {
    if (!m_keepsLone) return AppendUtf8(kReplacement, m_into);
    m_into.push_back(static_cast<char>(0xE0 | surrogate >> 12));
    m_into.push_back(static_cast<char>(0x80 | (surrogate >> 6 & 0x3F)));
    m_into.push_back(static_cast<char>(0x80 | (surrogate & 0x3F)));
  }

  std::string& m_into;
  bool m_keepsLone;
  char32_t m_high = 0;
};

void Utf8Writer::PutAfterOrAsSurrogate(char32_t unit) {
  const char32_t high = std::exchange(m_high, 0);
  if (high != 0 && IsLowSurrogate(unit)) {
    AppendUtf8(0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00), m_into);
    return;
  }
  if (high != 0) PutLone(high);
  if (IsHighSurrogate(unit)) {
    m_high = unit;
  } else if (IsLowSurrogate(unit)) {
    PutLone(unit);
  } else {
    AppendUtf8(unit, m_into);
  }
}

void DecodePlain(std::span<const std::byte> stored, std::string& into,
                 LoneSurrogates lone = LoneSurrogates::Replace) {
  if (stored.size() % 2 != 0) {
    throw Error(ErrorNumber::DamagedFile,
                "A text of an odd number of bytes (" + std::to_string(stored.size()) + ") is damaged.");
  }
  // Most texts are ASCII.
  into.resize(stored.size() / 2);
  std::size_t done = 0;
  for (; done < into.size(); ++done) {
    const std::uint16_t unit = LoadU16(stored.data() + 2 * done);
    if (unit >= 0x80) break;
    into[done] = static_cast<char>(unit);
  }
  into.resize(done);
  Utf8Writer writer(into, lone);
  for (std::size_t at = 2 * done; at < stored.size(); at += 2)
    writer.Put(LoadU16(stored.data() + at));
  writer.Finish();
}

void DecodeCompressed(std::span<const std::byte> runs, std::string& into, LoneSurrogates lone) {
  into.reserve(runs.size());
  Utf8Writer writer(into, lone);
  bool bytes = true;
  for (std::size_t at = 0; at < runs.size();) {
    if (runs[at] == kSwitch) {
      bytes = !bytes;
      ++at;
    } else if (bytes) {
      writer.Put(LoadU8(runs.data() + at));
      ++at;
    } else {
      if (at + 1 == runs.size()) {
        throw Error(ErrorNumber::DamagedFile, "A compressed text that ends inside a character is damaged.");
      }
      writer.Put(LoadU16(runs.data() + at));
      at += 2;
    }
  }
  writer.Finish();
}

/// Compressed form in runs of either kind; none (empty) when a character's low byte is zero.
Bytes Compress(std::u16string_view units) {
  Bytes result = {kCompressedMark0, kCompressedMark1};
  result.reserve(units.size() + 4);
  bool bytes = true;
  for (const char16_t unit : units) {
    const auto low = static_cast<std::byte>(unit & 0xFF);
    if (low == kSwitch) return {};
    const bool narrow = unit <= 0xFF;
    if (narrow != bytes) {
      result.push_back(kSwitch);
      bytes = narrow;
    }
    result.push_back(low);
    if (!narrow) result.push_back(static_cast<std::byte>(unit >> 8));
  }
  return result;
}

}  // namespace

char32_t NextCodePointOrSurrogate(std::string_view utf8, std::size_t& position) {
  const char32_t point = NextCodePoint(utf8, position);
  if (point != kInvalidByte + 0xED || utf8.size() - position < 2) return point;
  const auto second = static_cast<std::uint8_t>(utf8[position]);
  const auto third = static_cast<std::uint8_t>(utf8[position + 1]);
  if (second < 0xA0 || second > 0xBF || (third & 0xC0) != 0x80) return point;
  position += 2;
  return 0xD000 | (second & 0x3FU) << 6 | (third & 0x3FU);
}

void DecodeText(std::span<const std::byte> stored, std::string& into, LoneSurrogates lone) {
  into.clear();
  if (stored.size() < 2 || stored[0] != kCompressedMark0 || stored[1] != kCompressedMark1) {
    DecodePlain(stored, into, lone);
    return;
  }
  if (const std::optional<std::string_view> ascii = AsciiIn(stored)) {
    into = *ascii;
  } else {
    DecodeCompressed(stored.subspan(2), into, lone);
  }
}

std::optional<std::string_view> AsciiIn(std::span<const std::byte> stored) {
  if (stored.size() < 2 || stored[0] != kCompressedMark0 || stored[1] != kCompressedMark1)
    return std::nullopt;
  const auto runs = stored.subspan(2);
  if (!AllAscii(runs)) return std::nullopt;
  return std::string_view(reinterpret_cast<const char*>(runs.data()), runs.size());
}

Bytes EncodeText(std::string_view utf8, bool compress, LoneSurrogates lone) {
  Bytes stored;
  AppendText(utf8, compress, stored, lone);
  return stored;
}

void AppendText(std::string_view utf8, bool compress, Bytes& into, LoneSurrogates lone) {
  const auto bytes = std::as_bytes(std::span(utf8));
  const std::size_t begin = into.size();
  if (compress && utf8.size() > kMarkSize && AllAscii(bytes)) {
    into.resize(begin + kMarkSize + utf8.size());
    into[begin] = kCompressedMark0;
    into[begin + 1] = kCompressedMark1;
    std::memcpy(into.data() + begin + kMarkSize, bytes.data(), bytes.size());
    return;
  }
  const std::u16string units = Utf8ToUtf16(utf8, lone);
  // Plain text that begins with U+FEFF would read as compressed.
  const bool mustCompress = !units.empty() && units.front() == kMarkAsUnit;
  if (compress || mustCompress) {
    const Bytes compressed = Compress(units);
    if (!compressed.empty() && (mustCompress || compressed.size() < 2 * units.size())) {
      into.insert(into.end(), compressed.begin(), compressed.end());
      return;
    }
  }
  if (mustCompress) {
    throw Error(ErrorNumber::CannotConvert,
                "A text that begins with a byte-order mark and has a character whose low byte is zero cannot "
                "be stored.");
  }
  into.resize(begin + 2 * units.size());
  for (std::size_t i = 0; i < units.size(); ++i)
    StoreU16(into.data() + begin + 2 * i, units[i]);
}

std::size_t Utf16Length(std::string_view utf8, LoneSurrogates lone) {
  return AllAscii(std::as_bytes(std::span(utf8))) ? utf8.size() : Utf8ToUtf16(utf8, lone).size();
}

std::string Utf16ToUtf8(std::u16string_view units) {
  std::string result;
  result.reserve(units.size());
  Utf8Writer writer(result);
  for (const char16_t unit : units)
    writer.Put(unit);
  writer.Finish();
  return result;
}

std::u16string Utf8ToUtf16(std::string_view utf8, LoneSurrogates lone) {
  std::u16string units;
  units.reserve(utf8.size());
  for (std::size_t at = 0; at < utf8.size();) {
    const char32_t point =
        lone == LoneSurrogates::Keep ? NextCodePointOrSurrogate(utf8, at) : NextCodePoint(utf8, at);
    if (point >= kInvalidByte) {
      throw Error(ErrorNumber::CannotConvert,
                  "A text is not valid UTF-8 at byte " + std::to_string(at - 1) + ".");
    }
    if (point < 0x10000) {
      units.push_back(static_cast<char16_t>(point));
    } else {
      units.push_back(static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10)));
      units.push_back(static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF)));
    }
  }
  return units;
}

std::string DecodePlainText(std::span<const std::byte> stored) {
  std::string result;
  DecodePlain(stored, result);
  return result;
}

}  // namespace jet::format
