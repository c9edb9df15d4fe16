#include "tests/robustness/SeasonModel.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "jet/TableSpec.h"
#include "records/DraftInfo.h"
#include "records/PlayerInfo.h"
#include "records/TeamInfo.h"
#include "records/WinningInfo.h"
#include "storage/Schema.h"

namespace HLDataSrvc::test {

using HLIData::ISeasonInfo;
using HLIData::PickType;
using HLIData::WinningAction;

namespace {

const std::string kSeasons = "season info";
const std::string kPlaying = "playing info";
const std::string kMoney = "money distribution info";
const std::string kDraft = "draft info";
const std::string kWinnings = "winning info";

/// Where a season's rows have its identifier.
std::size_t SeasonColumn(const std::string& table) {
  return table == kWinnings ? 1 : 0;
}
std::int32_t Number(const std::string& text) {
  return text.empty() ? 0 : std::stoi(text);
}
std::string Text(std::int32_t number) {
  return std::to_string(number);
}
/// The text of a number that is stored above 0 only.
std::string AboveZero(std::int32_t number) {
  return number > 0 ? std::to_string(number) : "";
}

}  // namespace

SeasonModel::SeasonModel(jet::Database& database) {
  for (const auto& [table, lines] : RowsOf(database)) {
    auto& rows = m_rows[table];
    for (const std::string& line : lines) {
      Row& row = rows.emplace_back();
      std::istringstream fields(line + "|");
      for (std::string field; std::getline(fields, field, '|');)
        row.push_back(field);
    }
  }
  for (const jet::RelationInfo& relation : database.Relations()) {
    if (!relation.enforced) continue;
    const auto columns = database.Table(relation.table).columns;
    const auto column = std::find_if(columns.begin(), columns.end(), [&](const jet::ColumnSpec& spec) {
      return spec.name == relation.columns.at(0);
    });
    m_references.push_back(
        {relation.table, static_cast<std::size_t>(column - columns.begin()), relation.parentTable});
  }
}

Tables SeasonModel::Rows() const {
  Tables tables;
  for (const auto& [table, rows] : m_rows) {
    Lines& lines = tables[table];
    for (const Row& row : rows) {
      std::string line = row[0];
      for (std::size_t i = 1; i < row.size(); ++i)
        line += "|" + row[i];
      lines.push_back(std::move(line));
    }
    lines = Sorted(std::move(lines));
  }
  return tables;
}

std::vector<std::int32_t> SeasonModel::IDs(const std::string& table) const {
  std::vector<std::int32_t> ids;
  for (const Row& row : m_rows.at(table))
    ids.push_back(Number(row[0]));
  return ids;
}

std::int32_t SeasonModel::CurrentSeason() const {
  return Number(m_rows.at("settings").at(0)[1]);
}

std::set<std::int32_t> SeasonModel::SeasonsOf(std::int32_t year) const {
  std::set<std::int32_t> ids;
  for (const Row& row : m_rows.at(kSeasons)) {
    if (row[1] == Text(year)) ids.insert(Number(row[0]));
  }
  return ids;
}

std::set<std::int32_t> SeasonModel::MisfitSeasons() const {
  std::map<std::int32_t, std::int64_t> picks;
  for (const Row& row : m_rows.at(kSeasons))
    picks[Number(row[0])] = std::int64_t{Number(row[2])} * Number(row[3]);
  std::set<std::pair<std::string, std::string>> playing;
  for (const Row& row : m_rows.at(kPlaying))
    playing.emplace(row[0], row[1]);

  std::set<std::int32_t> misfits;
  std::set<std::pair<std::string, std::string>> picked;
  for (const auto& [id, count] : picks) {
    if (count > Schema::Draft::kMostPicks) misfits.insert(id);
  }
  for (const Row& row : m_rows.at(kDraft)) {
    const std::int32_t season = Number(row[0]);
    const std::string who = !row[3].empty() ? "P" + row[3] : !row[4].empty() ? "T" + row[4] : "N" + row[1];
    if (Number(row[1]) < 1 || Number(row[1]) > picks[season] || !playing.contains({row[0], row[2]}) ||
        !picked.emplace(row[0], who).second) {
      misfits.insert(season);
    }
  }
  return misfits;
}

Tables SeasonModel::SeasonRows(std::int32_t seasonID) const {
  Tables tables;
  for (const std::string& table : {kSeasons, kPlaying, kMoney, kDraft, kWinnings}) {
    for (Row row : m_rows.at(table)) {
      if (row[SeasonColumn(table)] != Text(seasonID)) continue;
      if (table == kDraft && !row[3].empty()) row[4].clear();
      std::string line = row[0];
      for (std::size_t i = 1; i < row.size(); ++i)
        line += "|" + row[i];
      tables[table].push_back(line);
    }
  }
  for (auto& [table, lines] : tables)
    lines = Sorted(std::move(lines));
  return tables;
}

bool SeasonModel::SaveDrafts(std::int32_t seasonID, const ISeasonInfo& season) {
  for (const auto& item : *season.Drafts()) {
    const auto& pick = dynamic_cast<const DraftInfo&>(*item);
    if (!pick.IsChanged()) continue;
    if (!pick.Manager()) return false;
    Row* stored = Find(kDraft, {Text(seasonID), Text(pick.DraftNo())});
    Row row = stored ? *stored : Row{Text(seasonID), Text(pick.DraftNo()), "", "", ""};
    row[2] = Text(pick.Manager()->ID());
    if (pick.PickType() == PickType::Player) row[3] = Text(pick.Player()->ID());
    if (pick.PickType() == PickType::Team) row[4] = Text(pick.Team()->ID());
    if (!Leads(kDraft, row)) return false;
    if (stored) {
      *stored = row;
    } else {
      m_rows[kDraft].push_back(row);
    }
  }
  return true;
}

void SeasonModel::DeleteDrafts(std::int32_t seasonID) {
  DeleteOf(kDraft, seasonID);
}

bool SeasonModel::SaveSeason(std::int32_t seasonID, const ISeasonInfo& season) {
  *Find(kSeasons, {Text(seasonID)}) = {Text(seasonID),
                                       Text(season.Year()),
                                       Text(season.NoOfManagers()),
                                       Text(season.NoOfRounds()),
                                       Text(season.MoneyContribution()),
                                       Text(season.NoOfRegularWeeks()),
                                       Text(season.TotalNoOfWeeks()),
                                       FieldText(season.IsRankingLocked()),
                                       FieldText(season.IsSeasonLocked()),
                                       FieldText(season.IsDraftLocked()),
                                       FieldText(season.HasSeasonStarted())};
  DeleteOf(kMoney, seasonID);
  if (!season.Prizes()) return true;
  return std::all_of(season.Prizes()->begin(), season.Prizes()->end(), [&](const auto& prize) {
    return Add(kMoney, {Text(seasonID), Text(prize->ID()), Text(prize->Amount())});
  });
}

bool SeasonModel::SavePlaying(std::int32_t seasonID, const ISeasonInfo& season) {
  DeleteOf(kPlaying, seasonID);
  return std::all_of(season.Managers()->begin(), season.Managers()->end(), [&](const auto& manager) {
    return Add(kPlaying, {Text(seasonID), Text(manager->ID()), FieldText(manager->IsFeePaid()),
                          AboveZero(manager->Rank())});
  });
}

bool SeasonModel::SaveRanking(std::int32_t seasonID, const ISeasonInfo& season) {
  for (const auto& manager : *season.Managers()) {
    Row* row = Find(kPlaying, {Text(seasonID), Text(manager->ID())});
    if (!row) return false;
    (*row)[3] = AboveZero(manager->Rank());
  }
  return true;
}

bool SeasonModel::SaveWinnings(std::int32_t seasonID, const ISeasonInfo& season) {
  std::int32_t next = 0;
  for (const auto& item : *season.Winnings()) {
    const auto& winning = dynamic_cast<const WinningInfo&>(*item);
    if (!winning.IsDirty()) continue;
    if (winning.Action() == WinningAction::Delete && winning.IsSaved()) {
      std::erase_if(m_rows[kWinnings], [&](const Row& row) { return row[0] == Text(winning.ID()); });
    }
    if (winning.Action() != WinningAction::Add) continue;
    next = next == 0 ? NextID(kWinnings) : next + 1;
    if (!Add(kWinnings, {Text(next), Text(seasonID), winning.PrizeID(), winning.ManagerID(),
                         AboveZero(winning.Week())})) {
      return false;
    }
  }
  return true;
}

void SeasonModel::Lock(std::int32_t seasonID, bool isRanking) {
  (*Find(kSeasons, {Text(seasonID)}))[isRanking ? 7 : 9] = "1";
}

void SeasonModel::AddSeason(std::int32_t year) {
  Row row(11, "0");
  row[0] = Text(NextID(kSeasons));
  row[1] = Text(year);
  m_rows[kSeasons].push_back(row);
}

void SeasonModel::SaveSettings(std::int32_t currentSeason) {
  m_rows["settings"].at(0)[1] = Text(currentSeason);
}

bool SeasonModel::Update(const std::string& table, std::int32_t id,
                         const std::vector<std::optional<std::string>>& values) {
  Row* stored = id == 0 ? nullptr : Find(table, {Text(id)});
  if (id != 0 && !stored) return false;
  Row row = stored ? *stored : Row(values.size() + 1);
  if (!stored) row[0] = Text(NextID(table));
  for (std::size_t i = 0; i < values.size(); ++i)
    row[i + 1] = values[i].value_or(row[i + 1]);
  if (!Leads(table, row)) return false;
  if (stored) {
    *stored = row;
  } else {
    m_rows[table].push_back(row);
  }
  return true;
}

bool SeasonModel::Delete(const std::string& table, std::int32_t id) {
  Row* row = Find(table, {Text(id)});
  if (!row) return false;
  for (const Reference& reference : m_references) {
    if (reference.parent != table) continue;
    for (const Row& referring : m_rows[reference.table]) {
      if (referring[reference.column] == Text(id)) return false;
    }
  }
  m_rows[table].erase(m_rows[table].begin() + (row - m_rows[table].data()));
  return true;
}

SeasonModel::Row* SeasonModel::Find(const std::string& table, const Row& key) {
  for (Row& row : m_rows[table]) {
    if (std::equal(key.begin(), key.end(), row.begin())) return &row;
  }
  return nullptr;
}

/// Whether everything that a row refers to is there.
bool SeasonModel::Leads(const std::string& table, const Row& row) const {
  return std::all_of(m_references.begin(), m_references.end(), [&](const Reference& reference) {
    if (reference.table != table || row[reference.column].empty()) return true;
    const auto& parents = m_rows.at(reference.parent);
    return std::any_of(parents.begin(), parents.end(),
                       [&](const Row& parent) { return parent[0] == row[reference.column]; });
  });
}

bool SeasonModel::Add(const std::string& table, Row row) {
  if (!Leads(table, row)) return false;
  m_rows[table].push_back(std::move(row));
  return true;
}

void SeasonModel::DeleteOf(const std::string& table, std::int32_t seasonID) {
  std::erase_if(m_rows[table], [&](const Row& row) { return row[0] == Text(seasonID); });
}

std::int32_t SeasonModel::NextID(const std::string& table) const {
  const auto ids = IDs(table);
  return ids.empty() ? 1 : *std::max_element(ids.begin(), ids.end()) + 1;
}

}  // namespace HLDataSrvc::test
