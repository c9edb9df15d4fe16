#include "jet/format/SortKey.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "jet/format/TextCodec.h"

namespace jet::format {
namespace {

/// How a character sorts.
///   Plain    its inline bytes
///   Accent   its inline bytes, and a weight among the weights of the text
///   Special  no inline bytes; an entry with its place and code at the end of the key
///   Mark     its weight is added to that of the character before
///   Ignored  nothing
///   Unknown  outside the table
enum class SortKind : std::uint8_t { Plain, Accent, Special, Mark, Ignored, Unknown };

struct SortEntry {
  std::uint16_t primary;  ///< inline bytes: one (high byte 0) or two
  SortKind kind;
  std::uint8_t weight;  ///< weight of Accent and Mark, code of Special
};

struct SparseEntry {
  char16_t character;
  SortEntry entry;
};

constexpr auto P = SortKind::Plain;
constexpr auto A = SortKind::Accent;
constexpr auto S = SortKind::Special;
constexpr auto M = SortKind::Mark;
constexpr auto I = SortKind::Ignored;
#include "jet/format/SortTable.inc"

SortEntry EntryOf(char32_t point) {
  if (point < kDenseTable.size()) return kDenseTable[point];
  const auto found =
      std::lower_bound(kSparseTable.begin(), kSparseTable.end(), point,
                       [](const SparseEntry& entry, char32_t wanted) { return entry.character < wanted; });
  if (found != kSparseTable.end() && found->character == point) return found->entry;
  return {0, SortKind::Unknown, 0};
}

// A key:  | inline bytes | 01 | weights | 01 01 01 | specials |  00 |
//
// The part from the second 01 is there only if there are specials. The weights are a byte for each character
// with inline bytes, without plain ones at the end. A special: | place, 2, big-endian | 06 | code |, the
// place being 0x8000 and 7 more than four times the number of weights before it.
constexpr std::byte kSectionEnd{0x01};
constexpr std::byte kKeyEnd{0x00};
constexpr std::uint8_t kPlainWeight = 0x02;
constexpr std::byte kSpecialMark{0x06};
constexpr std::size_t kMaxKeyCharacters = 255;

std::string_view WithoutTrailingBlanks(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

/// The first characters (UTF-16 units) of a text, as many as keys look at.
std::string_view FirstCharacters(std::string_view text) {
  if (text.size() <= kMaxKeyCharacters) return text;
  std::size_t units = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t before = at;
    units += NextCodePoint(text, at) >= 0x10000 ? 2U : 1U;
    if (units > kMaxKeyCharacters) return text.substr(0, before);
  }
  return text;
}

void AppendPrimary(std::uint16_t primary, std::vector<std::byte>& key) {
  if (primary > 0xFF) key.push_back(static_cast<std::byte>(primary >> 8));
  key.push_back(static_cast<std::byte>(primary & 0xFF));
}

/// Weights and specials of a text: what decides between texts with the same inline bytes.
class Tail {
 public:
  /// False for a mark without a character before it.
  bool Add(const SortEntry& entry) {
    switch (entry.kind) {
      case SortKind::Plain:
      case SortKind::Unknown:
        m_weights.push_back(std::byte{kPlainWeight});
        break;
      case SortKind::Accent:
        m_weights.push_back(std::byte{entry.weight});
        break;
      case SortKind::Special: {
        const std::size_t place = 0x8000 | (7 + 4 * m_weights.size());
        m_specials.push_back(static_cast<std::byte>(place >> 8 & 0xFF));
        m_specials.push_back(static_cast<std::byte>(place & 0xFF));
        m_specials.push_back(kSpecialMark);
        m_specials.push_back(std::byte{entry.weight});
        break;
      }
      case SortKind::Mark:
        if (m_weights.empty()) {
          m_weights.push_back(std::byte{entry.weight});
          return false;
        }
        m_weights.back() =
            static_cast<std::byte>(std::to_integer<std::uint8_t>(m_weights.back()) + entry.weight);
        break;
      case SortKind::Ignored:
        break;
    }
    return true;
  }
  /// Appends the key from the first 01 to its end.
  void AppendTo(std::vector<std::byte>& key) {
    while (!m_weights.empty() && m_weights.back() == std::byte{kPlainWeight})
      m_weights.pop_back();
    key.push_back(kSectionEnd);
    key.insert(key.end(), m_weights.begin(), m_weights.end());
    if (!m_specials.empty()) {
      key.insert(key.end(), 3, kSectionEnd);
      key.insert(key.end(), m_specials.begin(), m_specials.end());
    }
    key.push_back(kKeyEnd);
  }

 private:
  std::vector<std::byte> m_weights;
  std::vector<std::byte> m_specials;
};

std::vector<std::byte> TailOf(std::string_view text) {
  Tail tail;
  for (std::size_t at = 0; at < text.size();)
    tail.Add(EntryOf(NextCodePoint(text, at)));
  std::vector<std::byte> bytes;
  tail.AppendTo(bytes);
  return bytes;
}

/// Hands out the inline bytes of a text, and for a character outside the table bytes that sort behind all
/// others: ff and the code point in three bytes.
class PrimaryBytes {
 public:
  explicit PrimaryBytes(std::string_view text) : m_text(text) {}

  /// The next byte, or -1 at the end.
  int Next() {
    while (m_pendingBits == 0) {
      if (m_at == m_text.size()) return -1;
      const char32_t point = NextCodePoint(m_text, m_at);
      const SortEntry entry = EntryOf(point);
      m_onlyPlain = m_onlyPlain && entry.kind == SortKind::Plain;
      if (entry.kind == SortKind::Unknown) {
        m_pending = 0xFF000000U | point;
        m_pendingBits = 32;
      } else if (entry.kind == SortKind::Plain || entry.kind == SortKind::Accent) {
        m_pending = entry.primary;
        m_pendingBits = entry.primary > 0xFF ? 16 : 8;
      }
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
    const auto point = static_cast<unsigned char>(c);
    const SortEntry& entry = kDenseTable[point];
    if (point >= 0x80 || entry.kind != SortKind::Plain) {
      key.resize(before);
      return false;
    }
    if (entry.primary > 0xFF) *to++ = static_cast<std::byte>(entry.primary >> 8);
    *to++ = static_cast<std::byte>(entry.primary & 0xFF);
  }
  *to++ = kSectionEnd;
  *to++ = kKeyEnd;
  key.resize(static_cast<std::size_t>(to - key.data()));
  return true;
}

}  // namespace

bool AppendTextKey(std::string_view utf8, std::vector<std::byte>& key) {
  const std::string_view text = WithoutTrailingBlanks(FirstCharacters(utf8));
  if (AppendPlainKey(text, key)) return true;
  const std::size_t before = key.size();
  Tail tail;
  for (std::size_t at = 0; at < text.size();) {
    const SortEntry entry = EntryOf(NextCodePoint(text, at));
    if (entry.kind == SortKind::Unknown || !tail.Add(entry)) {
      key.resize(before);
      return false;
    }
    if (entry.kind == SortKind::Plain || entry.kind == SortKind::Accent) AppendPrimary(entry.primary, key);
  }
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
