#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "jet/file/Pager.h"
#include "jet/format/IndexPage.h"
#include "jet/table/Index.h"
#include "jet/table/PageAllocator.h"
#include "jet/table/UsageMap.h"

namespace jet {

/// Room for an entry on a leaf of an index.
struct LeafRoom {
  MutablePage leaf;
  format::EntryPlace place;  ///< what the entry goes before
  bool isNewKey;             ///< no entry beside it has the same key
  bool isAtEdge;             ///< the entry beside it is on another leaf
};

/// Adds entries to an index's tree and removes them. Lives for one change, inside a change unit.
///
/// What the tree looks like: a branch has an entry for each child, under the child's last entry; only the
/// very last child of the rightmost branches has none and is named as the branch's tail, so that appending
/// does not touch branches. Trees by other writers may name the last child both ways. The root keeps its
/// page: when it splits, its entries move to new pages and it becomes their branch. Pages that run empty are
/// given back.
class IndexEditor {
 public:
  IndexEditor(Pager& pager, PageAllocator& allocator, const Index& index, PageNumber tablePage);

  /// Adds an entry. True when no neighbour has the same key. Raises RecordTooLarge for a key that is too
  /// long, DamagedFile when the entry is there already.
  bool Insert(KeyBytes key, RowId row);
  /// Where an entry can go without anything but its leaf changing; none when it can not, or is there already.
  /// The page is ready for the change.
  std::optional<LeafRoom> FindRoom(const format::EntryBytes& entry);
  /// Removes the entry of `row` under `key`; false when there is none.
  bool Erase(const KeyBytes& key, RowId row);
  /// Removes the entry of `row` whatever its key, by reading all leaves; false when there is none.
  bool EraseRow(RowId row);

 private:
  struct Step {
    PageNumber page;  ///< a branch
    bool keyed;       ///< whether an entry names the child that was taken
  };
  /// The branches from the root to the leaf found last.
  class Path {
   public:
    void Clear() { m_length = 0; }
    void Add(Step step) { m_steps[m_length++] = step; }
    std::size_t Length() const { return m_length; }
    const Step& operator[](std::size_t level) const { return m_steps[level]; }

   private:
    std::array<Step, Index::kMaxDepth> m_steps;
    std::size_t m_length = 0;
  };
  struct Child {
    format::EntryBytes key;  ///< the child's last leaf entry
    PageNumber page;
  };
  struct Branch {
    std::vector<Child> keyed;
    PageNumber tail = 0;  ///< last child, when no entry names it
  };

  PageNumber Descend(const format::EntryBytes& entry);
  bool InsertEntry(const format::EntryBytes& entry);
  bool EraseEntry(const format::EntryBytes& entry);
  void SplitLeaf(PageNumber leaf, const format::EntryBytes* appended);
  Branch ReadBranch(PageNumber number) const;
  static std::vector<format::EntryBytes> EntriesOf(const std::vector<Child>& children);
  bool WriteBranch(PageNumber number, const Branch& branch);
  void UpdateBranch(std::size_t level, const Branch& branch);
  void SplitBranch(std::size_t level, const Branch& branch);
  static void AddParts(std::span<const Child> children, std::size_t cut,
                       std::vector<std::vector<Child>>& parts);
  void ReplaceChild(std::size_t level, PageNumber child, std::span<const Child> firsts, PageNumber last);
  void RefreshKeys(std::size_t level, PageNumber child);
  void RemoveChild(std::size_t level, PageNumber child);
  void CollapseRoot(PageNumber child);
  format::EntryBytes LastEntry(PageNumber number) const;
  bool IsKeylessChild(PageNumber tail, PageNumber lastKeyed) const;
  MutablePage NewPage(std::uint8_t level);
  void FreePage(PageNumber page);
  void LinkAfter(PageNumber left, PageNumber right);
  void Unlink(PageNumber number);
  PageNumber Root() const { return m_index->Definition().root; }
  [[noreturn]] void RaiseDamaged(const char* what) const;

  Pager* m_pager;
  PageAllocator* m_allocator;
  const Index* m_index;
  PageNumber m_tablePage;
  UsageMap m_map;
  Path m_path;
};

}  // namespace jet
