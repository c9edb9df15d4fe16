#include "jet/format/IndexPage.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cstring>
#include <string>

#include "jet/Error.h"
#include "jet/format/Bytes.h"
#include "jet/format/PageLayout.h"

namespace jet::format {

using namespace index_page;

namespace {

// Keys are short: comparing them in place is faster than the C library.
int CompareBytes(std::span<const std::byte> a, std::span<const std::byte> b) {
  const std::size_t shared = std::min(a.size(), b.size());
  std::size_t i = 0;
  for (; i + 8 <= shared; i += 8) {
    const std::uint64_t wordA = LoadU64(a.data() + i);
    const std::uint64_t wordB = LoadU64(b.data() + i);
    if (wordA == wordB) continue;
    const int first = std::countr_zero(wordA ^ wordB) & ~7;  // of the bits of the first byte that differs
    return (wordA >> first & 0xFF) < (wordB >> first & 0xFF) ? -1 : 1;
  }
  for (; i < shared; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

// A key that many entries are compared with: by its first eight bytes, as one number, so far as that decides.
class SearchedKey {
 public:
  explicit SearchedKey(std::span<const std::byte> key)
      : m_key(key), m_headSize(std::min(key.size(), sizeof m_head)) {
    for (std::size_t i = 0; i < m_headSize; ++i)
      m_head |= std::to_integer<std::uint64_t>(key[i]) << (56 - 8 * i);
    m_headBits = m_headSize == 0 ? 0 : ~std::uint64_t{0} << (64 - 8 * m_headSize);
  }
  /// Whether the first `size` of these bytes are less.
  bool IsAbove(std::span<const std::byte> entry, std::size_t size) const {
    if (size >= m_headSize && entry.size() >= sizeof m_head) {
      const std::uint64_t head = LoadBigU64(entry.data()) & m_headBits;
      if (m_key.size() == m_headSize || head != m_head) return head < m_head;
    }
    return CompareBytes(entry.first(size), m_key) < 0;
  }

 private:
  std::span<const std::byte> m_key;
  std::size_t m_headSize;
  std::uint64_t m_head = 0;
  std::uint64_t m_headBits = 0;
};

// An entry mask where it is stored, as numbers of 64 bits.
class Mask {
 public:
  explicit Mask(std::byte* stored) : m_stored(stored) {}
  /// Moves the bits from `from` on up by `by`; the gap is clear. No bit above `last` is set, then or now.
  void Open(std::size_t from, std::size_t by, std::size_t last) {
    const std::size_t first = from / 64;
    const std::size_t words = by / 64;
    const std::size_t bits = by % 64;
    const std::uint64_t stays = Word(first) & ~Bits(first, from);
    const std::uint64_t lowest = Word(first) & Bits(first, from);
    // From the top down, so that every word is read before it is written.
    for (std::size_t i = last / 64; i > first + words; --i) {
      const std::size_t source = i - words;
      const std::uint64_t below = source - 1 == first ? lowest : Word(source - 1);
      SetWord(i, Word(source) << bits | (bits == 0 ? 0 : below >> (64 - bits)));
    }
    SetWord(first + words, lowest << bits);
    for (std::size_t i = first; i < first + words; ++i)
      SetWord(i, 0);
    SetWord(first, Word(first) | stays);
  }
  /// Drops the bits in (from, from + by] and moves those above down by `by`. No bit above `last` is set.
  void Close(std::size_t from, std::size_t by, std::size_t last) {
    const std::size_t first = from + 1;
    const std::size_t cut = first + by;
    for (std::size_t i = first / 64; i <= last / 64; ++i) {
      const std::size_t source = i + by / 64;
      std::uint64_t moved = Above(source, cut) >> (by % 64);
      if (by % 64 != 0) moved |= Above(source + 1, cut) << (64 - by % 64);
      SetWord(i, (Word(i) & ~Bits(i, first)) | moved);
    }
  }
  void Set(std::size_t bit) { SetWord(bit / 64, Word(bit / 64) | std::uint64_t{1} << (bit % 64)); }
  void Clear() { std::memset(m_stored, 0, kMaskBytes); }

 private:
  static constexpr std::size_t kWholeWords = kMaskBytes / 8;
  std::uint64_t Word(std::size_t i) const {
    if (i < kWholeWords) return LoadU64(m_stored + 8 * i);
    std::uint64_t word = 0;
    for (std::size_t byte = 8 * i; byte < kMaskBytes; ++byte)
      word |= std::uint64_t{LoadU8(m_stored + byte)} << (8 * (byte % 8));
    return word;
  }
  void SetWord(std::size_t i, std::uint64_t word) {
    if (i < kWholeWords) return StoreU64(m_stored + 8 * i, word);
    for (std::size_t byte = 8 * i; byte < kMaskBytes; ++byte)
      StoreU8(m_stored + byte, static_cast<std::uint8_t>(word >> (8 * (byte % 8))));
  }
  // Bits of word `i` that stand for positions not below `from`.
  static std::uint64_t Bits(std::size_t i, std::size_t from) {
    if (64 * i >= from) return ~std::uint64_t{0};
    if (64 * i + 64 <= from) return 0;
    return ~std::uint64_t{0} << (from - 64 * i);
  }
  std::uint64_t Above(std::size_t i, std::size_t from) const { return Word(i) & Bits(i, from); }
  std::byte* m_stored;
};

}  // namespace

IndexPageView::IndexPageView(std::span<const std::byte> page, std::uint32_t number)
    : m_page(page), m_number(number) {
  const std::uint8_t type = LoadU8(page.data());
  if (type != page_type::kIndexLeaf && type != page_type::kIndexBranch)
    RaiseDamaged("it is not a page of an index");
  m_prefix = LoadU16(page.data() + kPrefix);
  const std::size_t free = FreeSpace();
  m_used = free < kCapacity && BoundaryUpTo(kCapacity - free) == kCapacity - free
               ? kCapacity - free
               : BoundaryUpTo(kMaskBytes * 8 - 1);  // the figure is wrong, or there is no entry
  if (m_used > kCapacity) RaiseDamaged("its entries run past its end");
  if (m_prefix != 0 && m_used != 0 && m_prefix >= First().end)
    RaiseDamaged("its prefix is longer than its first entry");
}

void IndexPageView::RaiseDamaged(const char* what) const {
  throw Error(ErrorNumber::DamagedFile,
              "Page " + std::to_string(m_number) + " of an index is damaged: " + what + ".");
}

bool IndexPageView::IsLeaf() const {
  return LoadU8(m_page.data()) == page_type::kIndexLeaf;
}
std::uint8_t IndexPageView::Level() const {
  return LoadU8(m_page.data() + kLevel);
}
std::uint32_t IndexPageView::Table() const {
  return LoadU32(m_page.data() + kTable);
}
std::uint32_t IndexPageView::Previous() const {
  return LoadU32(m_page.data() + kPrevious);
}
std::uint32_t IndexPageView::Next() const {
  return LoadU32(m_page.data() + kNext);
}
std::uint32_t IndexPageView::Tail() const {
  return LoadU32(m_page.data() + kTail);
}
std::size_t IndexPageView::FreeSpace() const {
  return LoadU16(m_page.data() + kFreeSpace);
}

std::size_t IndexPageView::BoundaryAfter(std::size_t position) const {
  // The mask is followed by the entries, so that eight bytes can be loaded at any of its bytes.
  std::size_t byte = (position + 1) / 8;
  std::uint64_t keep = ~std::uint64_t{0} << ((position + 1) % 8);
  for (; byte < kMaskBytes; byte += 8) {
    std::uint64_t word = LoadU64(m_page.data() + kMask + byte) & keep;
    if (byte + 8 > kMaskBytes) word &= ~std::uint64_t{0} >> (8 * (byte + 8 - kMaskBytes));
    if (word != 0) return 8 * byte + static_cast<std::size_t>(std::countr_zero(word));
    keep = ~std::uint64_t{0};
  }
  return 0;
}

std::size_t IndexPageView::BoundaryUpTo(std::size_t position) const {
  // More than eight bytes of the page lie before the mask, so that eight bytes can be loaded that end with
  // any of its bytes.
  std::size_t byte = position / 8;
  std::uint64_t keep = ~std::uint64_t{0} >> (7 - position % 8);
  for (;; byte -= 8) {
    std::uint64_t word = LoadU64(m_page.data() + kMask + byte - 7) & keep;
    if (byte < 7) word &= ~std::uint64_t{0} << (8 * (7 - byte));
    if (word != 0) return 8 * byte + 7 - static_cast<std::size_t>(std::countl_zero(word));
    if (byte < 8) return 0;
    keep = ~std::uint64_t{0};
  }
}

EntryPlace IndexPageView::After(std::size_t begin) const {
  if (begin >= m_used) return {m_used, m_used};
  return {begin, BoundaryAfter(begin)};
}

EntryPlace IndexPageView::Last() const {
  return Previous(EntryPlace{m_used, m_used});
}

EntryPlace IndexPageView::Previous(EntryPlace place) const {
  if (place.begin == 0) return {m_used, m_used};
  return {BoundaryUpTo(place.begin - 1), place.begin};
}

int IndexPageView::Compare(EntryPlace place, std::span<const std::byte> key) const {
  if (place.begin == 0 || m_prefix == 0) return CompareBytes(Stored(place), key);
  const int order = ComparePrefix(key);
  return order != 0 ? order : CompareBytes(Stored(place), key.subspan(m_prefix));
}

bool IndexPageView::BeginsWith(EntryPlace place, std::span<const std::byte> bytes) const {
  const std::size_t shared = place.begin == 0 ? 0 : std::min(m_prefix, bytes.size());
  const auto rest = bytes.subspan(shared);
  return CompareBytes(Prefix().first(shared), bytes.first(shared)) == 0 &&
         CompareBytes(Stored(place).first(rest.size()), rest) == 0;
}

int IndexPageView::ComparePrefix(std::span<const std::byte> key) const {
  const int order = CompareBytes(Prefix(), key.first(std::min(m_prefix, key.size())));
  return order == 0 && m_prefix != 0 && key.size() <= m_prefix ? 1 : order;
}

inline EntryPlace IndexPageView::Around(std::size_t position) const {
  // Most entries are short: both of their ends are in eight bytes of the mask.
  constexpr std::size_t kBytesBefore = 3;
  const std::size_t byte = position / 8;
  if (byte >= kBytesBefore && byte - kBytesBefore + 8 <= kMaskBytes) {
    const std::uint64_t word = LoadU64(m_page.data() + kMask + byte - kBytesBefore);
    const std::size_t bit = 8 * kBytesBefore + position % 8;
    const std::uint64_t upTo = word << (63 - bit);
    const std::uint64_t after = word >> bit >> 1;
    if (upTo != 0 && after != 0) {
      return {position - static_cast<std::size_t>(std::countl_zero(upTo)),
              position + 1 + static_cast<std::size_t>(std::countr_zero(after))};
    }
  }
  return {BoundaryUpTo(position), BoundaryAfter(position)};
}

EntryPlace IndexPageView::LowerBound(std::span<const std::byte> key) const {
  // Bisects the bytes of the entries, not the entries: each probe finds the boundaries around a byte in the
  // mask.
  if (m_used == 0) return {0, 0};
  EntryPlace place = First();
  if (CompareBytes(Stored(place), key) >= 0) return place;
  const int order = ComparePrefix(key);
  if (order != 0) return order < 0 ? After(m_used) : Next(place);
  const SearchedKey rest(key.subspan(m_prefix));
  std::size_t low = place.end;  // every entry that begins below `low` is less
  std::size_t high = m_used;    // every entry that begins at or above `high` is not
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    place = Around(middle);
    const bool isLess = rest.IsAbove(m_page.subspan(kEntries + place.begin), place.end - place.begin);
    // Branch-free: a branch here is unpredictable.
    const std::size_t mask = std::size_t{0} - static_cast<std::size_t>(isLess);
    low = (place.end & mask) | (low & ~mask);
    high = (place.begin & ~mask) | (high & mask);
  }
  return After(low);
}

void IndexPageView::Read(EntryPlace place, EntryBytes& into) const {
  const std::size_t shared = place.begin == 0 ? 0 : m_prefix;
  const auto stored = Stored(place);
  into.resize(shared + stored.size());
  std::ranges::copy(Prefix().first(shared), into.begin());
  std::ranges::copy(stored, into.begin() + static_cast<std::ptrdiff_t>(shared));
}

EntryBytes IndexPageView::Read(EntryPlace place) const {
  EntryBytes entry;
  Read(place, entry);
  return entry;
}

std::uint32_t IndexPageView::LastFour(EntryPlace place) const {
  if (place.end - place.begin >= 4) return LoadBigU32(m_page.data() + kEntries + place.end - 4);
  // The prefix may reach into the row that ends the entry.
  const EntryBytes whole = Read(place);
  if (whole.size() < 4) RaiseDamaged("an entry is too short");
  return LoadBigU32(whole.data() + whole.size() - 4);
}

std::uint32_t IndexPageView::RowPage(EntryPlace place) const {
  return LastFour(place) >> 8;
}
std::uint8_t IndexPageView::RowSlot(EntryPlace place) const {
  return static_cast<std::uint8_t>(LastFour(place));
}
std::uint32_t IndexPageView::Child(EntryPlace place) const {
  return LastFour(place);
}

std::size_t IndexPageView::Count() const {
  int count = 0;
  std::size_t i = 0;
  for (; i + 8 <= kMaskBytes; i += 8)
    count += std::popcount(LoadU64(m_page.data() + kMask + i));
  for (; i < kMaskBytes; ++i)
    count += std::popcount(LoadU8(m_page.data() + kMask + i));
  return static_cast<std::size_t>(count);
}

std::vector<EntryBytes> IndexPageView::AllEntries() const {
  std::vector<EntryBytes> entries;
  for (EntryPlace place = First(); !place.IsEnd(); place = Next(place))
    entries.push_back(Read(place));
  return entries;
}

EntrySpans IndexPageView::AllEntries(EntryBytes& pool) const {
  const std::size_t count = Count();
  pool.resize(m_used + count * m_prefix);
  EntrySpans entries;
  entries.reserve(count + 1);  // one is often added
  auto end = pool.begin();
  for (EntryPlace place = First(); !place.IsEnd(); place = Next(place)) {
    const auto begin = end;
    if (place.begin != 0) end = std::ranges::copy(Prefix(), end).out;
    end = std::ranges::copy(Stored(place), end).out;
    entries.emplace_back(begin, end);
  }
  return entries;
}

IndexPage::IndexPage(std::span<std::byte> page, std::uint32_t number)
    : IndexPageView(page, number), m_bytes(page) {}

void IndexPage::Initialize(std::span<std::byte> page, std::uint32_t table, std::uint8_t level) {
  std::ranges::fill(page, std::byte{0});
  StoreU8(page.data(), level == 0 ? page_type::kIndexLeaf : page_type::kIndexBranch);
  StoreU8(page.data() + 1, 1);
  StoreU16(page.data() + kFreeSpace, kCapacity);
  StoreU32(page.data() + kTable, table);
  StoreU8(page.data() + kLevel, level);
}

void IndexPage::SetPrevious(std::uint32_t page) {
  StoreU32(m_bytes.data() + kPrevious, page);
}
void IndexPage::SetNext(std::uint32_t page) {
  StoreU32(m_bytes.data() + kNext, page);
}
void IndexPage::SetTail(std::uint32_t page) {
  StoreU32(m_bytes.data() + kTail, page);
}

void IndexPage::SetUsed(std::size_t used) {
  m_used = used;
  StoreU16(m_bytes.data() + kFreeSpace, static_cast<std::uint16_t>(kCapacity - used));
}

// Whether the entries could fit with another before `place`, whatever their prefix: what the first and the
// last share is the most that any two share.
bool IndexPage::CanHold(EntryPlace place, std::span<const std::byte> entry) const {
  if (m_used == 0) return entry.size() <= kCapacity;
  const EntryBytes first = place.begin == 0 ? EntryBytes(entry.begin(), entry.end()) : Read(First());
  const EntryBytes last = place.IsEnd() ? EntryBytes(entry.begin(), entry.end()) : Read(Last());
  const auto differs = std::mismatch(first.begin(), first.end(), last.begin(), last.end());
  const auto shared = static_cast<std::size_t>(differs.first - first.begin());
  const std::size_t count = Count();
  return m_used + m_prefix * (count - 1) + entry.size() <= kCapacity + shared * count;
}

bool IndexPageView::HasRoomFor(EntryPlace place, std::span<const std::byte> entry) const {
  if (m_used == 0) return false;
  if (m_prefix == 0) return m_used + entry.size() <= kCapacity;
  return place.begin != 0 && entry.size() > m_prefix && m_used + entry.size() - m_prefix <= kCapacity &&
         std::memcmp(entry.data(), Prefix().data(), m_prefix) == 0;
}

bool IndexPage::Insert(EntryPlace place, std::span<const std::byte> entry) {
  const std::size_t at = place.begin;
  const std::size_t shared = at == 0 ? 0 : m_prefix;
  if (!HasRoomFor(place, entry)) {
    if (!CanHold(place, entry)) return false;
    EntryBytes pool;
    EntrySpans entries = AllEntries(pool);
    std::ptrdiff_t before = 0;
    for (EntryPlace other = First(); other.begin < at; other = Next(other))
      ++before;
    entries.insert(entries.begin() + before, entry);
    return Assign(entries);
  }
  const auto piece = entry.subspan(shared);
  std::byte* const from = m_bytes.data() + kEntries + at;
  std::memmove(from + piece.size(), from, m_used - at);
  std::memcpy(from, piece.data(), piece.size());
  Mask mask(m_bytes.data() + kMask);
  mask.Open(at + 1, piece.size(), m_used + piece.size());
  mask.Set(at + piece.size());
  SetUsed(m_used + piece.size());
  return true;
}

void IndexPage::Remove(EntryPlace place) {
  assert(!place.IsEnd());
  if (place.begin == 0 && m_prefix != 0) {
    EntryBytes pool;
    const EntrySpans entries = AllEntries(pool);
    [[maybe_unused]] const bool fits = Assign(std::span(entries).subspan(1));
    assert(fits);
    return;
  }
  const std::size_t size = place.end - place.begin;
  std::byte* const to = m_bytes.data() + kEntries + place.begin;
  std::memmove(to, to + size, m_used - place.end);
  std::memset(m_bytes.data() + kEntries + m_used - size, 0, size);
  Mask(m_bytes.data() + kMask).Close(place.begin, size, m_used);
  SetUsed(m_used - size);
}

std::optional<std::size_t> IndexPage::PrefixToFit(std::span<const std::span<const std::byte>> entries) {
  std::size_t total = 0;
  for (const auto entry : entries)
    total += entry.size();
  if (total <= kCapacity) return 0;
  // Entries ascend, so that what the first and the last share, all share. It may reach into the row that ends
  // them.
  const auto first = entries.front();
  const auto last = entries.back();
  std::size_t most = first.size();
  for (const auto entry : entries)
    most = std::min(most, entry.size());
  std::size_t prefix = 0;
  while (prefix + 1 < most && first[prefix] == last[prefix])
    ++prefix;
  if (total - prefix * (entries.size() - 1) > kCapacity) return std::nullopt;
  return prefix;
}

bool IndexPage::Assign(std::span<const std::span<const std::byte>> entries) {
  const std::optional<std::size_t> fitting = PrefixToFit(entries);
  if (!fitting) return false;
  const std::size_t prefix = *fitting;
  Mask mask(m_bytes.data() + kMask);
  mask.Clear();
  std::size_t at = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const std::size_t from = i == 0 ? 0 : prefix;
    std::memcpy(m_bytes.data() + kEntries + at, entries[i].data() + from, entries[i].size() - from);
    at += entries[i].size() - from;
    mask.Set(at);
  }
  std::memset(m_bytes.data() + kEntries + at, 0, kCapacity - at);
  m_prefix = prefix;
  StoreU16(m_bytes.data() + kPrefix, static_cast<std::uint16_t>(prefix));
  SetUsed(at);
  return true;
}

}  // namespace jet::format
