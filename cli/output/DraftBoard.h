#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "HLLeague/DraftOrder.h"
#include "HLLeague/Picks.h"
#include "HLLeague/StoredDraft.h"

namespace cli {

/// A draft as a grid for people: a row for each round, a column for each manager in the order of the ranking,
/// an arrow for the direction in which a round runs. An empty pick shows its number; the one that is due is
/// marked, and so are picks that are not saved, picks of a manager whose turn it was not, and stored picks
/// that do not fit the season.
///
/// Managers who do not fit side by side are split into grids below each other, each of as many columns as the
/// next, give or take one.
class DraftBoard {
 public:
  /// The picks as they stand, as they are stored, which shows those that are not saved, and the stored ones
  /// that do not fit.
  DraftBoard(const HLIData::ISeasonInfo& season, const HLLeague::Picks& picks, const HLLeague::Picks& stored,
             const std::vector<HLLeague::MisfitPick>& misfits = {});

  /// The lines of the board, none wider than `width` columns, which counts as 24 when it is less.
  std::vector<std::string> Lines(std::size_t width) const;

 private:
  struct Cell {
    std::vector<std::string> forms;  ///< what it may show, from the longest form to the shortest
    char mark = ' ';
  };

  Cell CellOf(std::int32_t pick, const HLLeague::Picks& picks, const HLLeague::Picks& stored) const;
  void MakeHeads();
  void MakeNotes(const HLIData::ISeasonInfo& season, const HLLeague::Picks& picks,
                 const std::vector<std::int32_t>& unsaved);
  const Cell& CellAt(std::int32_t round, std::int32_t place) const;
  std::size_t WidestForm() const;
  void AddGrid(std::vector<std::string>& lines, std::int32_t firstPlace, std::int32_t lastPlace,
               std::size_t textWidth) const;

  HLLeague::DraftOrder m_order;
  bool m_isSettled;
  std::optional<std::int32_t> m_due;
  std::string m_title;
  std::vector<Cell> m_heads;  ///< of the columns, by place
  std::vector<Cell> m_cells;  ///< by pick number
  std::vector<std::string> m_notes;
};

}  // namespace cli
