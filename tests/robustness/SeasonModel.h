#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "HLIData/IDataService.h"
#include "HLIData/ISeasonInfo.h"
#include "tests/service/LeagueRows.h"

namespace HLDataSrvc::test {

/// The rows that a league has to have after each operation, by separate rules: they are computed from the
/// rows before and from the season in memory.
///
/// What an operation could not do is what relationships and keys forbid; it stops there, and what it did
/// before stays. Operations answer whether they were done to the end.
class SeasonModel {
 public:
  /// Takes rows and enforced relationships from a database.
  explicit SeasonModel(jet::Database& database);

  Tables Rows() const;
  std::vector<std::int32_t> IDs(const std::string& table) const;
  std::int32_t CurrentSeason() const;
  /// The seasons of a year.
  std::set<std::int32_t> SeasonsOf(std::int32_t year) const;
  /// The seasons of which not every stored pick can be placed.
  std::set<std::int32_t> MisfitSeasons() const;
  /// The rows of a season as it shows them once it is loaded: a pick of a player shows no team.
  Tables SeasonRows(std::int32_t seasonID) const;

  bool SaveDrafts(std::int32_t seasonID, const HLIData::ISeasonInfo& season);
  void DeleteDrafts(std::int32_t seasonID);
  bool SaveSeason(std::int32_t seasonID, const HLIData::ISeasonInfo& season);
  bool SavePlaying(std::int32_t seasonID, const HLIData::ISeasonInfo& season);
  bool SaveRanking(std::int32_t seasonID, const HLIData::ISeasonInfo& season);
  bool SaveWinnings(std::int32_t seasonID, const HLIData::ISeasonInfo& season);
  void Lock(std::int32_t seasonID, bool isRanking);
  void AddSeason(std::int32_t year);
  void SaveSettings(std::int32_t currentSeason);
  /// The columns behind the id of a master record; one without a value is not written. `id` 0 adds a record.
  bool Update(const std::string& table, std::int32_t id,
              const std::vector<std::optional<std::string>>& values);
  /// False if there is no such record, or if others refer to it.
  bool Delete(const std::string& table, std::int32_t id);

 private:
  using Row = std::vector<std::string>;
  struct Reference {
    std::string table;
    std::size_t column;
    std::string parent;
  };

  Row* Find(const std::string& table, const Row& key);
  bool Leads(const std::string& table, const Row& row) const;
  bool Add(const std::string& table, Row row);
  void DeleteOf(const std::string& table, std::int32_t seasonID);
  std::int32_t NextID(const std::string& table) const;

  std::map<std::string, std::vector<Row>> m_rows;
  std::vector<Reference> m_references;
};

}  // namespace HLDataSrvc::test
