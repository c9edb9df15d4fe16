#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "jet/check/Findings.h"
#include "jet/check/PageUse.h"
#include "jet/check/TableCheck.h"
#include "jet/format/IndexPage.h"
#include "jet/table/Store.h"

namespace jet::check {

/// Checks one real index: its tree of pages, and its entries against the rows of the table both ways.
class IndexCheck {
 public:
  IndexCheck(Store& store, PageUse& pages, Findings& findings, const CheckedTable& checked,
             std::size_t number);

  void Run();

 private:
  struct RowKey {
    std::vector<std::byte> bytes;
    bool isKnown = true;  ///< false: a column's values have no known form in keys
    std::size_t nulls = 0;
  };

  void Walk(PageNumber number, std::size_t depth);
  void WalkLeaf(const format::IndexPageView& view, PageNumber page);
  void WalkBranch(const format::IndexPageView& view, PageNumber page, std::size_t depth);
  void WalkChild(PageNumber branch, PageNumber child, const format::EntryBytes* expected, std::size_t depth);
  void CheckHead(const format::IndexPageView& view, PageNumber page, std::span<const std::byte> bytes);
  void CheckNeighbours(const format::IndexPageView& view, PageNumber page);
  void CheckLeafChain();
  void CheckMap();
  void TakeEntry(const format::EntryBytes& entry, PageNumber page);
  RowKey KeyOf(const RowRef& row) const;
  void CheckEntry(const format::EntryBytes& entry, RowId id);
  void CheckRowsWithoutEntry();

  Store* m_store;
  PageUse* m_pages;
  Findings* m_findings;
  const CheckedTable* m_checked;
  const format::IndexDefinition* m_index;
  const std::vector<std::size_t>* m_columns;
  std::string m_where;
  std::vector<PageNumber> m_tree;
  std::vector<PageNumber> m_leaves;
  std::vector<RowId> m_rows;        // rows of the entries met so far
  format::EntryBytes m_lastEntry;   // empty before the first
  PageNumber m_disorderedPage = 0;  // the last page reported for the order of its entries
  bool m_isWhole = true;            // false: part of the tree could not be read
};

}  // namespace jet::check
