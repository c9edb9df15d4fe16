#include "cli/output/DraftBoard.h"

#include <algorithm>
#include <map>
#include <optional>

#include "HLLeague/Find.h"
#include "HLLeague/Pickables.h"
#include "HLLeague/Seasons.h"
#include "league/Utf8.h"
#include "records/RecordKey.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kNarrowest = 24;      ///< columns of a whole line
constexpr std::size_t kNarrowestText = 12;  ///< columns of a cell's text before managers are split
constexpr std::size_t kMarkAndGap = 2;      ///< columns of a cell besides its text
constexpr char kDue = '>';
constexpr char kUnsaved = '*';
constexpr char kOfAnother = '~';
constexpr char kMisfit = '!';

/// The parts that there are, with blanks between.
std::string Join(std::initializer_list<std::string> parts) {
  std::string text;
  for (const std::string& part : parts) {
    if (part.empty()) continue;
    text += (text.empty() ? "" : " ") + part;
  }
  return text;
}

std::string WithInitial(const std::string& first, const std::string& last) {
  return Join({first.empty() ? "" : FirstLetter(first) + ".", last});
}

/// The position comes first, so that it is shown even where the name is cut.
std::vector<std::string> FormsOf(const HLIData::IPickable& pickable) {
  const PickableFacts facts = FactsOf(pickable);
  const std::string whole = Join({facts.position, facts.name});
  const std::string brief = Join({facts.position, facts.lastName});
  const bool isTeam = pickable.PickType() == HLIData::PickType::Team;
  return {Join({whole, facts.team}), whole,
          isTeam ? brief : Join({facts.position, WithInitial(facts.firstName, facts.lastName)}), brief};
}

/// The longest form that fits, none longer than form `longest`; of the shortest as much as fits.
std::string FormThatFits(const std::vector<std::string>& forms, std::size_t longest, std::size_t width) {
  for (std::size_t i = std::min(longest, forms.size() - 1); i < forms.size(); ++i) {
    if (DisplayWidth(forms[i]) <= width) return forms[i];
  }
  return CutToWidth(forms.back(), width);
}

/// The first form of which all fit, so that cells look alike where they can; the third is the first that may
/// differ from cell to cell.
template <typename Cells>
std::size_t LongestForm(const Cells& cells, std::size_t width) {
  for (std::size_t form = 0; form < 2; ++form) {
    const bool allFit = std::all_of(cells.begin(), cells.end(), [&](const auto& cell) {
      return DisplayWidth(cell.forms[std::min(form, cell.forms.size() - 1)]) <= width;
    });
    if (allFit) return form;
  }
  return 2;
}

}  // namespace

DraftBoard::DraftBoard(const HLIData::ISeasonInfo& season, const Picks& picks, const Picks& stored,
                       const std::vector<MisfitPick>& misfits)
    : m_order(season), m_isSettled(m_order.WhyUnsettled().empty()), m_due(FirstEmptyPick(picks)) {
  const auto made =
      std::count_if(picks.begin(), picks.end(), [](const Pick& pick) { return !pick.IsEmpty(); });
  m_title = "Draft " + std::to_string(season.Year()) + ": " + std::to_string(made) + " of " +
            CountOfPicks(picks.size()) + " made, " + std::to_string(m_order.NoOfManagers()) + " managers, " +
            std::to_string(m_order.NoOfRounds()) + " rounds";
  MakeHeads();
  for (std::int32_t pick = 1; pick <= m_order.NoOfPicks(); ++pick)
    m_cells.push_back(CellOf(pick, picks, stored));
  MakeNotes(season, picks, DifferingPicks(picks, stored));
  for (const MisfitPick& misfit : misfits) {
    if (misfit.number >= 1 && misfit.number <= m_order.NoOfPicks())
      m_cells[static_cast<std::size_t>(misfit.number) - 1].mark = kMisfit;
    m_notes.push_back(std::string(1, kMisfit) + " Does not fit: " + Printable(misfit.why));
  }
}

DraftBoard::Cell DraftBoard::CellOf(std::int32_t number, const Picks& picks, const Picks& stored) const {
  const auto index = static_cast<std::size_t>(number) - 1;
  const Pick& pick = picks[index];
  Cell cell;
  const std::string text = std::to_string(number);
  if (pick.IsEmpty()) {
    cell.forms = {text};
    if (m_isSettled && m_due == number) {
      cell.forms = {text + " on the clock", text + " on clock", text + " now", text};
      cell.mark = kDue;
    }
  } else if (pick.what) {
    cell.forms = FormsOf(*pick.what);
    for (std::string& form : cell.forms)
      form = Printable(form);
  } else {
    cell.forms = {pick.type == HLIData::PickType::None ? "(nobody)" : "(unknown)"};
  }
  if (!pick.IsEmpty() && m_isSettled && m_order.ManagerOn(number)->ID() != *pick.managerID)
    cell.mark = kOfAnother;
  if (pick != stored[index] && cell.mark != kDue) cell.mark = kUnsaved;
  return cell;
}

void DraftBoard::MakeHeads() {
  std::map<std::string, int> countOfLastName;
  for (std::int32_t place = 1; place <= m_order.NoOfManagers(); ++place) {
    if (const auto manager = m_order.ManagerAt(place)) ++countOfLastName[manager->LastName()];
  }
  for (std::int32_t place = 1; place <= m_order.NoOfManagers(); ++place) {
    const auto manager = m_order.ManagerAt(place);
    if (!manager) {
      m_heads.push_back({{"(nobody)"}});
      continue;
    }
    const std::string last = manager->LastName();
    const std::string full = FullName(*manager);
    const std::string brief = countOfLastName[last] > 1 ? WithInitial(manager->FirstName(), last) : last;
    m_heads.push_back({{Printable(full), Printable(full), Printable(brief)}});
  }
}

void DraftBoard::MakeNotes(const HLIData::ISeasonInfo& season, const Picks& picks,
                           const std::vector<std::int32_t>& unsaved) {
  if (!m_isSettled) {
    m_notes.push_back(m_order.WhyUnsettled());
  } else if (m_due) {
    const Turn turn = m_order.At(*m_due);
    m_notes.push_back("> Pick " + std::to_string(*m_due) + ", round " + std::to_string(turn.round) + ": " +
                      Printable(FullName(*m_order.ManagerOn(*m_due))) + " is on the clock.");
  } else {
    m_notes.emplace_back("The draft is complete.");
  }
  std::string ofAnother;
  for (std::int32_t number = 1; number <= m_order.NoOfPicks(); ++number) {
    const Pick& pick = picks[static_cast<std::size_t>(number) - 1];
    if (!m_isSettled || pick.IsEmpty() || m_order.ManagerOn(number)->ID() == *pick.managerID) continue;
    const auto manager = ManagersOf(season).Find(HLDataSrvc::RecordKey(*pick.managerID));
    ofAnother += (ofAnother.empty() ? "" : ", ") + std::to_string(number) + " by " +
                 Printable(manager ? manager->LastName() : std::to_string(*pick.managerID));
  }
  if (!unsaved.empty()) m_notes.push_back("* Not saved: " + PickNumbers(unsaved) + ".");
  if (!ofAnother.empty()) m_notes.push_back("~ Made by another than whose turn it was: " + ofAnother + ".");
}

const DraftBoard::Cell& DraftBoard::CellAt(std::int32_t round, std::int32_t place) const {
  const std::int32_t managers = m_order.NoOfManagers();
  const std::int32_t pickInRound = round % 2 == 1 ? place : managers - place + 1;
  return m_cells[static_cast<std::size_t>((round - 1) * managers + pickInRound) - 1];
}

std::size_t DraftBoard::WidestForm() const {
  std::size_t widest = kNarrowestText;
  for (const auto* cells : {&m_heads, &m_cells}) {
    for (const Cell& cell : *cells)
      widest = std::max(widest, DisplayWidth(cell.forms.front()));
  }
  return widest;
}

std::vector<std::string> DraftBoard::Lines(std::size_t width) const {
  width = std::max(width, kNarrowest);
  std::vector<std::string> lines = Wrapped(m_title, width);
  const auto managers = static_cast<std::size_t>(m_order.NoOfManagers());
  if (!m_cells.empty()) {
    const std::size_t lead = std::to_string(m_order.NoOfRounds()).size() + 3;
    const std::size_t left = width - lead + 1;  // the last column needs no gap
    const std::size_t fitting = std::max<std::size_t>(left / (kNarrowestText + kMarkAndGap), 1);
    const std::size_t grids = (managers + fitting - 1) / fitting;
    const std::size_t columns = (managers + grids - 1) / grids;
    const std::size_t textWidth = std::min(left / columns - kMarkAndGap, WidestForm());
    for (std::size_t first = 1; first <= managers; first += columns) {
      lines.emplace_back();
      AddGrid(lines, static_cast<std::int32_t>(first),
              static_cast<std::int32_t>(std::min(first + columns - 1, managers)), textWidth);
    }
    lines.emplace_back();
  }
  for (const std::string& note : m_notes) {
    for (std::string& line : Wrapped(note, width))
      lines.push_back(std::move(line));
  }
  return lines;
}

void DraftBoard::AddGrid(std::vector<std::string>& lines, std::int32_t firstPlace, std::int32_t lastPlace,
                         std::size_t textWidth) const {
  const std::size_t digits = std::to_string(m_order.NoOfRounds()).size();
  const std::size_t headForm = LongestForm(m_heads, textWidth);
  const std::size_t cellForm = LongestForm(m_cells, textWidth);
  const auto addRow = [&](std::string line, const auto& cellAt, std::size_t longestForm) {
    for (std::int32_t place = firstPlace; place <= lastPlace; ++place) {
      const Cell& cell = cellAt(place);
      line += cell.mark;
      line += PaddedToWidth(FormThatFits(cell.forms, longestForm, textWidth), textWidth) + " ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  };
  addRow(
      std::string(digits + 3, ' '),
      [&](std::int32_t place) -> const Cell& { return m_heads[static_cast<std::size_t>(place) - 1]; },
      headForm);
  for (std::int32_t round = 1; round <= m_order.NoOfRounds(); ++round) {
    const std::string number = std::to_string(round);
    addRow(
        std::string(digits - number.size(), ' ') + number + (round % 2 == 1 ? " → " : " ← "),
        [&](std::int32_t place) -> const Cell& { return CellAt(round, place); }, cellForm);
  }
}

}  // namespace cli
