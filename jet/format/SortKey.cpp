#include "jet/format/SortKey.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "jet/Text.h"
#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

/// How a character sorts.
///   Plain    its inline bytes
///   Accent   its inline bytes, and separate weights among those of the text
///   Special  no inline bytes; an entry with its position and code at the end of the key
///   Mark     its weight is added to that of the character before
///   Kana1, Kana2  inline bytes, weights if it has any, and an entry among the kana of the text
///   Ignored  nothing
///   Invalid  no UTF-8
enum class SortKind : std::uint8_t { Plain, Accent, Special, Mark, Kana1, Kana2, Ignored, Invalid };

struct SortEntry {
  std::uint32_t primary;  ///< inline bytes: as many as the number has, up to four; 0: none
  std::uint16_t weight;   ///< one or two weights, or the code of Special; 0: none
  SortKind kind;

  bool HasPrimary() const { return primary != 0; }
};

/// Characters from `first` to the next run. Inline bytes count up by one from character to character.
struct SortRun {
  SortEntry entry;
  char16_t first;
};

constexpr auto P = SortKind::Plain;
constexpr auto A = SortKind::Accent;
constexpr auto S = SortKind::Special;
constexpr auto M = SortKind::Mark;
constexpr auto J = SortKind::Kana1;
constexpr auto K = SortKind::Kana2;
constexpr auto I = SortKind::Ignored;
#include "jet/format/SortTable.inc"

/// Inline bytes of ASCII characters that have nothing else, as most have; 0 for the others.
constexpr std::array<std::uint16_t, 0x80> kPlainAscii = [] {
  std::array<std::uint16_t, 0x80> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    if (kDenseTable[i].kind == SortKind::Plain) table[i] = static_cast<std::uint16_t>(kDenseTable[i].primary);
  }
  return table;
}();

constexpr char32_t kHighSurrogates = 0xD800;
constexpr char32_t kLowSurrogates = 0xDC00;
constexpr char32_t kSurrogatesEnd = 0xE000;
constexpr char32_t kPairs = 0x10000;  // characters from here on are pairs of surrogates
constexpr std::uint16_t kSurrogateWeight = 0x3F;

constexpr char32_t HighOf(char32_t point) {
  return kHighSurrogates + ((point - kPairs) >> 10);
}
constexpr char32_t LowOf(char32_t point) {
  return kLowSurrogates + ((point - kPairs) & 0x3FF);
}

/// The two inline bytes of a surrogate, whether it stands alone or in a pair.
std::uint32_t PrimaryOfSurrogate(char32_t unit) {
  if (unit < kLowSurrogates) return unit - 0x27FE;
  std::uint32_t distance = 0x2708;
  for (const char32_t edge : {8U, 262U, 516U, 770U}) {
    if (unit - kLowSurrogates >= edge) distance -= 2;
  }
  return unit - distance;
}

SortEntry EntryOf(char32_t point) {
  if (point < kDenseTable.size()) return kDenseTable[point];
  if (point >= kInvalidByte) {
    // Behind all others, in the order of the bytes.
    return {0xFFFFFF00U | (point - kInvalidByte), 0, SortKind::Invalid};
  }
  if (point >= kPairs) {
    return {PrimaryOfSurrogate(HighOf(point)) << 16 | PrimaryOfSurrogate(LowOf(point)),
            kSurrogateWeight << 8 | kSurrogateWeight, SortKind::Accent};
  }
  if (point >= kHighSurrogates && point < kSurrogatesEnd)
    return {PrimaryOfSurrogate(point), kSurrogateWeight, SortKind::Accent};
  const auto next = std::upper_bound(kSortRuns.begin(), kSortRuns.end(), point,
                                     [](char32_t wanted, const SortRun& run) { return wanted < run.first; });
  const SortRun& run = *std::prev(next);
  SortEntry entry = run.entry;
  if (entry.HasPrimary()) entry.primary += point - run.first;
  return entry;
}

// A key:  | inline bytes | 01 | weights | 01 01 | kana | 01 | specials | 00 |
//
// The part from 01 01 on is there only if there are kana or specials. The weights are a byte for each
// character with inline bytes (a few characters have two), without those of 02 or less at the end. Kana:
// three entries a byte, 80 | first << 4 | second << 2 | third, without those of 3 at the end, then
// ff 02 80 ff 80, and ff if specials follow. A special: | position, 2, big-endian | 06 | code |, the position
// being 0x8000 and 7 more than four times the number of weights before it.
constexpr std::byte kSectionEnd{0x01};
constexpr std::byte kKeyEnd{0x00};
constexpr std::uint8_t kPlainWeight = 0x02;
constexpr std::byte kSpecialMark{0x06};
constexpr std::uint8_t kKana1Entry = 2;
constexpr std::uint8_t kKana2Entry = 3;
constexpr std::array kKanaEnd = {std::byte{0xFF}, std::byte{0x02}, std::byte{0x80}, std::byte{0xFF},
                                 std::byte{0x80}};
constexpr std::byte kKanaBeforeSpecials{0xFF};
constexpr std::size_t kMaxKeyCharacters = 255;

std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

/// What a key looks at: the first 255 UTF-16 units of a text.
struct KeyText {
  std::string_view text;
  char32_t half = 0;  ///< the high surrogate behind it of a pair that was cut in two; 0: none
};

KeyText FirstCharacters(std::string_view text) {
  if (text.size() <= kMaxKeyCharacters) return {text};
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t before = at;
    const char32_t point = NextCodePointOrSurrogate(text, at);
    units += point >= kPairs && point < kInvalidByte ? 2U : 1U;
    if (units <= kMaxKeyCharacters) continue;
    const bool isCut = point >= kPairs && point < kInvalidByte && units == kMaxKeyCharacters + 1;
    return {text.substr(0, before), isCut ? HighOf(point) : 0};
  }
  return {text};
}

/// Writes the bytes of a number, the highest first, without zeros in front; where they end.
std::byte* PutBytesOf(std::uint32_t number, std::byte* to) {
  for (int shift = number > 0xFFFF ? 24 : 8; shift >= 0; shift -= 8) {
    if (number >> shift != 0) *to++ = static_cast<std::byte>(number >> shift & 0xFF);
  }
  return to;
}

/// Weights, kana and specials of a text: what decides between texts with the same inline bytes.
class Tail {
 public:
  void Add(const SortEntry& entry) {
    switch (entry.kind) {
      case SortKind::Plain:
      case SortKind::Accent:
      case SortKind::Kana1:
      case SortKind::Kana2:
      case SortKind::Invalid:
        if (entry.weight > 0xFF) m_weights.push_back(static_cast<std::byte>(entry.weight >> 8));
        m_weights.push_back(entry.weight != 0 ? static_cast<std::byte>(entry.weight & 0xFF)
                                              : std::byte{kPlainWeight});
        if (entry.kind == SortKind::Kana1) m_kana.push_back(kKana1Entry);
        if (entry.kind == SortKind::Kana2) m_kana.push_back(kKana2Entry);
        break;
      case SortKind::Special: {
        const std::size_t position = 0x8000 | (7 + 4 * (m_weights.size() - m_leadingMarks));
        m_specials.push_back(static_cast<std::byte>(position >> 8 & 0xFF));
        m_specials.push_back(static_cast<std::byte>(position & 0xFF));
        m_specials.push_back(kSpecialMark);
        m_specials.push_back(static_cast<std::byte>(entry.weight));
        break;
      }
      case SortKind::Mark:
        if (m_weights.empty()) {
          // Stands for no character, so that positions of specials do not count it.
          m_weights.push_back(static_cast<std::byte>(entry.weight));
          m_leadingMarks = 1;
        } else {
          m_weights.back() =
              static_cast<std::byte>(std::to_integer<unsigned>(m_weights.back()) + entry.weight);
        }
        break;
      case SortKind::Ignored:
        break;
    }
  }
  /// Appends the key from the first 01 to its end.
  void AppendTo(std::vector<std::byte>& key) {
    while (!m_weights.empty() && m_weights.back() <= std::byte{kPlainWeight})
      m_weights.pop_back();
    key.push_back(kSectionEnd);
    key.insert(key.end(), m_weights.begin(), m_weights.end());
    if (!m_kana.empty() || !m_specials.empty()) key.insert(key.end(), 2, kSectionEnd);
    if (!m_kana.empty()) AppendKana(key);
    if (!m_specials.empty()) {
      key.push_back(kSectionEnd);
      key.insert(key.end(), m_specials.begin(), m_specials.end());
    }
    key.push_back(kKeyEnd);
  }

 private:
  void AppendKana(std::vector<std::byte>& key) {
    while (!m_kana.empty() && m_kana.back() == kKana2Entry)
      m_kana.pop_back();
    for (std::size_t at = 0; at < m_kana.size(); at += 3) {
      unsigned packed = 0x80;
      for (std::size_t i = 0; i < 3 && at + i < m_kana.size(); ++i)
        packed |= static_cast<unsigned>(m_kana[at + i]) << (4 - 2 * i);
      key.push_back(static_cast<std::byte>(packed));
    }
    key.insert(key.end(), kKanaEnd.begin(), kKanaEnd.end());
    if (!m_specials.empty()) key.push_back(kKanaBeforeSpecials);
  }

  std::vector<std::byte> m_weights;
  std::size_t m_leadingMarks = 0;
  std::vector<std::uint8_t> m_kana;
  std::vector<std::byte> m_specials;
};

std::vector<std::byte> TailOf(std::string_view text) {
  Tail tail;
  for (std::size_t at = 0; at < text.size();)
    tail.Add(EntryOf(NextCodePointOrSurrogate(text, at)));
  std::vector<std::byte> bytes;
  tail.AppendTo(bytes);
  return bytes;
}

/// Hands out the inline bytes of a text.
class PrimaryBytes {
 public:
  explicit PrimaryBytes(std::string_view text) : m_text(text) {}

  /// The next byte, or -1 at the end.
  int Next() {
    while (m_pendingBits == 0) {
      if (m_at == m_text.size()) return -1;
      const auto byte = static_cast<unsigned char>(m_text[m_at]);
      if (byte < kPlainAscii.size() && kPlainAscii[byte] != 0) {
        ++m_at;
        m_pending = kPlainAscii[byte];
        m_pendingBits = m_pending > 0xFF ? 16 : 8;
        break;
      }
      const SortEntry entry = EntryOf(NextCodePointOrSurrogate(m_text, m_at));
      m_onlyPlain = m_onlyPlain && entry.kind == SortKind::Plain;
      m_pending = entry.primary;
      m_pendingBits = entry.primary > 0xFFFFFF ? 32
                      : entry.primary > 0xFFFF ? 24
                      : entry.primary > 0xFF   ? 16
                      : entry.primary > 0      ? 8
                                               : 0;
    }
    m_pendingBits -= 8;
    return static_cast<int>(m_pending >> m_pendingBits & 0xFF);
  }
  /// Whether all characters read so far have inline bytes alone.
  bool OnlyPlain() const { return m_onlyPlain; }

 private:
  std::string_view m_text;
  std::size_t m_at = 0;
  std::uint32_t m_pending = 0;
  unsigned m_pendingBits = 0;
  bool m_onlyPlain = true;
};

/// Appends the key of a text of ASCII characters that have inline bytes alone, as most texts are. False, with
/// `key` as it was, for any other.
bool AppendPlainKey(std::string_view text, std::vector<std::byte>& key) {
  const std::size_t before = key.size();
  key.resize(before + 2 * text.size() + 2);  // each has two bytes at most
  std::byte* to = key.data() + before;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const std::uint16_t primary = byte < kPlainAscii.size() ? kPlainAscii[byte] : std::uint16_t{0};
    if (primary == 0) {
      key.resize(before);
      return false;
    }
    if (primary > 0xFF) *to++ = static_cast<std::byte>(primary >> 8);
    *to++ = static_cast<std::byte>(primary & 0xFF);
  }
  *to++ = kSectionEnd;
  *to++ = kKeyEnd;
  key.resize(static_cast<std::size_t>(to - key.data()));
  return true;
}

}  // namespace

bool AppendTextKey(std::string_view utf8, std::vector<std::byte>& key) {
  if (utf8.size() <= kMaxKeyCharacters && AppendPlainKey(WithoutTrailingBlanks(utf8), key)) return true;
  const KeyText first = FirstCharacters(utf8);
  const std::string_view text = first.half == 0 ? WithoutTrailingBlanks(first.text) : first.text;
  std::array<std::byte, sizeof(SortEntry::primary) * (kMaxKeyCharacters + 1)> primary;
  std::byte* end = primary.data();
  Tail tail;
  const auto add = [&](const SortEntry& entry) {
    end = PutBytesOf(entry.primary, end);
    tail.Add(entry);
  };
  for (std::size_t at = 0; at < text.size();) {
    const SortEntry entry = EntryOf(NextCodePointOrSurrogate(text, at));
    if (entry.kind == SortKind::Invalid) return false;
    add(entry);
  }
  if (first.half != 0) add(EntryOf(first.half));
  key.insert(key.end(), primary.data(), end);
  tail.AppendTo(key);
  return true;
}

std::strong_ordering CompareText(std::string_view a, std::string_view b) {
  const std::string_view textA = WithoutTrailingBlanks(a);
  const std::string_view textB = WithoutTrailingBlanks(b);
  PrimaryBytes bytesA(textA);
  PrimaryBytes bytesB(textB);
  for (;;) {
    const int byteA = bytesA.Next();
    const int byteB = bytesB.Next();
    if (byteA != byteB) return byteA <=> byteB;
    if (byteA < 0) break;
  }
  if (bytesA.OnlyPlain() && bytesB.OnlyPlain()) return std::strong_ordering::equal;
  const std::vector<std::byte> tailA = TailOf(textA);
  const std::vector<std::byte> tailB = TailOf(textB);
  return std::lexicographical_compare_three_way(tailA.begin(), tailA.end(), tailB.begin(), tailB.end());
}

}  // namespace jet::format
