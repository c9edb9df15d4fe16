#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "jet/format/PageLayout.h"

namespace jet::format {

// Index page: a leaf or a branch of an index's B-tree.
//
//   0x00  04 01 leaf, 03 01 branch
//   0x02  u16  free space: 3616 - bytes of entries
//   0x04  u32  definition page of the table
//   0x08  u32  0
//   0x0c  u32  previous page of the level, 0 none
//   0x10  u32  next page of the level, 0 none
//   0x14  u32  tail: on a branch, the last child, when no entry names it
//   0x18  u16  prefix: bytes of the first entry that the later ones leave out
//   0x1a  u8   level: 0 leaf, 1 branch above leaves, ...
//   0x1b  453  entry mask: bit n set = an entry ends n bytes into the entries
//   0x1e0 3616 entries
//
// Leaf entry: key, page of the row (3 bytes, big-endian), slot. Branch entry: the last leaf entry of the
// child, then the child's page (4 bytes, big-endian). Entries ascend by all their bytes.
namespace index_page {
inline constexpr std::size_t kFreeSpace = 0x02;
inline constexpr std::size_t kTable = 0x04;
inline constexpr std::size_t kPrevious = 0x0c;
inline constexpr std::size_t kNext = 0x10;
inline constexpr std::size_t kTail = 0x14;
inline constexpr std::size_t kPrefix = 0x18;
inline constexpr std::size_t kLevel = 0x1a;
inline constexpr std::size_t kMask = 0x1b;
inline constexpr std::size_t kMaskBytes = 453;
inline constexpr std::size_t kEntries = 0x1e0;
inline constexpr std::size_t kCapacity = kPageSize - kEntries;
inline constexpr std::size_t kRowBytes = 4;    // page and slot at the end of a leaf entry
inline constexpr std::size_t kChildBytes = 4;  // child page at the end of a branch entry
}  // namespace index_page

/// Bytes of one index entry, prefix restored.
using EntryBytes = std::vector<std::byte>;
/// Entries, prefix restored, that lie elsewhere.
using EntrySpans = std::vector<std::span<const std::byte>>;

/// Where an entry lies in its page, counted from the first entry byte. `begin` == `end`: past the last entry.
struct EntryPlace {
  std::size_t begin = 0;
  std::size_t end = 0;
  bool IsEnd() const { return begin == end; }
};

/// Reads the entries of an index page. Borrows the page.
class IndexPageView {
 public:
  /// `number` is used in messages. Raises DamagedFile when the page is no index page or its figures do not
  /// fit.
  IndexPageView(std::span<const std::byte> page, std::uint32_t number);

  bool IsLeaf() const;
  std::uint8_t Level() const;
  std::uint32_t Table() const;
  std::uint32_t Previous() const;
  std::uint32_t Next() const;
  std::uint32_t Tail() const;
  std::size_t FreeSpace() const;
  std::size_t PrefixLength() const { return m_prefix; }
  /// Bytes of entries, according to the mask.
  std::size_t Used() const { return m_used; }

  EntryPlace First() const { return After(0); }
  EntryPlace Next(EntryPlace place) const { return After(place.end); }
  EntryPlace Last() const;
  /// The entry before `place`; the end place when there is none.
  EntryPlace Previous(EntryPlace place) const;
  /// The first entry that is not less than `key`; the end place when there is none.
  EntryPlace LowerBound(std::span<const std::byte> key) const;

  /// The same, at once for keys that no entry is above, as those of new rows often are.
  EntryPlace PlaceFor(std::span<const std::byte> key) const {
    const EntryPlace last = Last();
    return !last.IsEnd() && Compare(last, key) < 0 ? EntryPlace{m_used, m_used} : LowerBound(key);
  }

  /// The entry's own bytes in the page, without the prefix unless it is the first.
  std::span<const std::byte> Stored(EntryPlace place) const {
    return m_page.subspan(index_page::kEntries + place.begin, place.end - place.begin);
  }
  /// Length with the prefix.
  std::size_t Length(EntryPlace place) const {
    return place.end - place.begin + (place.begin == 0 ? 0 : m_prefix);
  }
  /// The whole entry into `into`.
  void Read(EntryPlace place, EntryBytes& into) const;
  EntryBytes Read(EntryPlace place) const;
  /// Less, equal or greater than zero as the entry is to `key`, by bytes; an entry that begins with `key` is
  /// greater.
  int Compare(EntryPlace place, std::span<const std::byte> key) const;
  /// Whether the entry, which is not shorter, begins with these bytes.
  bool BeginsWith(EntryPlace place, std::span<const std::byte> bytes) const;
  /// Whether an entry can be put before `place` without storing others again: it has the page's prefix, and
  /// fits.
  bool HasRoomFor(EntryPlace place, std::span<const std::byte> entry) const;
  /// Row pointer of a leaf entry. Raises DamagedFile for an entry too short to have one.
  std::uint32_t RowPage(EntryPlace place) const;
  std::uint8_t RowSlot(EntryPlace place) const;
  /// Child page of a branch entry.
  std::uint32_t Child(EntryPlace place) const;
  std::vector<EntryBytes> AllEntries() const;
  /// The same, all of them put into `pool`.
  EntrySpans AllEntries(EntryBytes& pool) const;
  std::size_t Count() const;

 protected:
  EntryPlace After(std::size_t begin) const;
  std::size_t BoundaryAfter(std::size_t position) const;  // first entry end > position; 0 when there is none
  std::size_t BoundaryUpTo(std::size_t position) const;   // last entry end <= position; 0 when there is none
  EntryPlace Around(std::size_t position) const;          // both: the entry with that byte
  std::uint32_t LastFour(EntryPlace place) const;
  /// As Compare, of the prefix of all entries but the first, so far as that decides; else 0.
  int ComparePrefix(std::span<const std::byte> key) const;
  std::span<const std::byte> Prefix() const { return m_page.subspan(index_page::kEntries, m_prefix); }
  [[noreturn]] void RaiseDamaged(const char* what) const;
  std::span<const std::byte> m_page;
  std::uint32_t m_number;
  std::size_t m_prefix = 0;
  std::size_t m_used = 0;
};

/// Changes the entries of an index page, keeping mask and free space right. Borrows the page.
class IndexPage : public IndexPageView {
 public:
  IndexPage(std::span<std::byte> page, std::uint32_t number);
  /// Makes `page` an empty index page.
  static void Initialize(std::span<std::byte> page, std::uint32_t table, std::uint8_t level);

  void SetPrevious(std::uint32_t page);
  void SetNext(std::uint32_t page);
  void SetTail(std::uint32_t page);

  /// The prefix with which these entries, which ascend, fit a page: 0 if they do without one, else the
  /// longest; none when they do not fit.
  static std::optional<std::size_t> PrefixToFit(std::span<const std::span<const std::byte>> entries);

  /// Puts an entry before `place`. False, and nothing changed, when it does not fit even with the longest
  /// prefix.
  bool Insert(EntryPlace place, std::span<const std::byte> entry);
  void Remove(EntryPlace place);
  /// Replaces all entries, which ascend. False, and nothing changed, when they do not fit. The prefix is
  /// computed only when they do not fit without one.
  bool Assign(std::span<const std::span<const std::byte>> entries);
  bool Assign(const std::vector<EntryBytes>& entries) {
    return Assign(EntrySpans(entries.begin(), entries.end()));
  }

 private:
  bool CanHold(EntryPlace place, std::span<const std::byte> entry) const;
  void SetUsed(std::size_t used);
  std::span<std::byte> m_bytes;
};

}  // namespace jet::format
