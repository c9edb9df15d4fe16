#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HLDataSrvc/Host.h"
#include "HLIData/IDataService.h"
#include "HLIData/ISettingInfo.h"
#include "service/Failures.h"
#include "service/ServiceCaches.h"

namespace jet {
class Database;
class Recordset;
class Value;
}  // namespace jet

namespace HLDataSrvc {

class DraftInfo;
class PlayerInfo;
class SeasonInfo;
class SettingInfo;
class TeamInfo;
class Writes;

/// The data service: holds the open database, the settings object and the caches, and knows the current
/// season.
///
/// Every operation traps what is raised inside it and reports it in one of the two styles of
/// service/Failures.h, except where its interface says that it raises. Each family of operations has a source
/// separate file.
class DataService final : public HLIData::IDataService,
                          private HLIData::ISettingInfoEvents,
                          public std::enable_shared_from_this<DataService> {
 public:
  /// Closed, with nothing loaded and no current season.
  explicit DataService(std::shared_ptr<Host> host);
  /// Closes the database and releases the settings and all records.
  ~DataService() override;
  DataService(const DataService&) = delete;
  DataService& operator=(const DataService&) = delete;

  std::int32_t CurrentSeasonID() const override { return m_currentSeasonID; }
  void CurrentSeasonID(std::int32_t value) override { m_currentSeasonID = value; }
  std::int32_t CurrentSeasonYear() const override { return m_currentSeasonYear; }
  void CurrentSeasonYear(std::int32_t seasonYear) override;
  std::shared_ptr<HLIData::ISeasonInfo> GetCurrentSeasonInfo() override;
  bool DiscardCurrentSeasonInfo() override;
  std::shared_ptr<HLIData::ISeasonInfo> AddSeason(std::int32_t seasonYear) override;
  bool SaveCurrentSeasonInfo() override;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::ISeasonInfo>> GetAllSeasons() override;
  bool Initialize(HLIData::DBType dbType, std::string& errorMessage) override;
  bool SaveManagersPlaying() override;
  bool SaveRanking() override;
  bool DisableRanking() override;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IPositionInfo>> GetPlayerPositions() override;
  bool SaveDrafts() override;
  bool DeleteDrafts() override;
  bool DisableDrafting() override;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::ITeamInfo>> GetTeams() override;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IPickable>> Search(HLIData::SearchType searchType,
                                                                       const std::string& searchText,
                                                                       bool curSeasonOnly,
                                                                       bool skipRetiredPlayers) override;
  std::shared_ptr<HLIData::ISettingInfo> GetSettings() override;
  bool SaveSettings() override;
  bool UpdatePlayer(const std::string& lastName, const std::string& firstName, std::int32_t position,
                    std::int32_t team, bool isRetired, std::int32_t& id,
                    std::shared_ptr<HLIData::IPlayerInfo>& oNewPlayer, std::string& errMessage) override;
  bool UpdatePosition(const std::string& desc, const std::string& abbr, std::int32_t& id,
                      std::shared_ptr<HLIData::IPositionInfo>& oNewPosition,
                      std::string& errMessage) override;
  bool UpdateManager(const std::string& lastName, const std::string& firstName, std::int32_t& id,
                     std::shared_ptr<HLIData::IManagerTmplInfo>& oNewManagerTmpl,
                     std::string& errMessage) override;
  bool UpdatePrize(const std::string& desc, std::int32_t prizeTypeID, std::int32_t& id,
                   std::shared_ptr<HLIData::IPrizeTmplInfo>& oNewPrize, std::string& errMessage) override;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IPrizeTmplInfo>> GetPrizeTmpls() override;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IPrizeTypeInfo>> GetPrizeTypes() override;
  bool AddWinning(std::shared_ptr<HLIData::IWinningInfo>& oNewWin) override;
  bool SaveWinnings() override;
  void CloseDatabase() override;
  bool OpenDatabase(bool clearCache, std::string& errorMessage) override;
  bool Delete(HLIData::DeleteType deleteType, std::int32_t id, std::string& errorMessage) override;

  /// The records loaded so far; for this component only.
  ServiceCaches& Caches() { return m_caches; }
  /// The settings object, empty before the first GetSettings; for this component only.
  const std::shared_ptr<SettingInfo>& Settings() const { return m_settings; }
  /// The open database; for this component only. Raises ObjectNotSet when none is open.
  jet::Database& Database() const;
  /// The player with an identifier, from the cache or the database; empty when there is none. For this
  /// component only. Raises UnknownKey for one whose position or team does not exist.
  std::shared_ptr<PlayerInfo> PlayerByID(std::int32_t playerID);
  /// See HLDataSrvc::OpeningError. For this component only.
  std::exception_ptr OpeningError() const { return m_openingError; }
  /// While a copy of it lives, besides the service's own, the client has a transaction open and the database
  /// is not reopened. For this component only.
  std::shared_ptr<void> ClientTransaction() const { return m_clientTransaction; }
  /// A new service on the open database of this one, which is left without. For this component only.
  std::shared_ptr<DataService> Renewed();

 private:
  void SettingsChanged() override;

  /// One operation that is under way, perhaps as a step of another. At the end of the outermost a message box
  /// names the drafts that were loaded in part.
  class Operation {
   public:
    explicit Operation(DataService& service) : m_self(service.weak_from_this().lock()), m_service(service) {
      if (service.m_operations++ == 0) service.m_shown = {};
    }
    ~Operation() {
      if (--m_service.m_operations == 0) m_service.ShowPartialDrafts();
    }
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

   private:
    std::shared_ptr<DataService> m_self;  // a client may release the service in an event or a message box
    DataService& m_service;
  };
  void ShowPartialDrafts() noexcept;

  /// Runs an operation that shows its failure; see ShowFailure.
  template <typename Result, typename Work>
  Result Trap(const std::string& sentence, Work&& work) {
    const Operation operation(*this);
    return ShowFailure<Result>(*m_host, sentence, std::forward<Work>(work));
  }

  // Loaders. They keep what they load, answer an empty reference for what there is no row of, and raise what
  // goes wrong unless they say that they show it.

  /// The season with an identifier; for 0 that of today's year, which becomes the current one.
  std::shared_ptr<SeasonInfo> SeasonByID(std::int32_t seasonID);
  /// The season with an identifier or, when that is below 1, of a year, from the database.
  std::shared_ptr<SeasonInfo> LoadSeason(std::int32_t seasonID, std::int32_t seasonYear);
  /// Who takes part in a season, in ranking order.
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IManagerInfo>> LoadManagers(std::int32_t seasonID);
  /// The picks of a season, a pick for every number, and why a row ended the loading: it does not fit.
  struct LoadedDrafts {
    std::shared_ptr<HLIData::KeyedCollection<HLIData::IDraftInfo>> drafts;
    std::string problem;  ///< empty when every row was placed, or when a message box has named the problem
  };
  /// The draft of a season of which numbers, managers and rounds are known.
  LoadedDrafts LoadDrafts(const SeasonInfo& season);
  /// Loads the draft of a season and gives it to it. What could not be placed is shown at the operation's
  /// end.
  void ReloadDrafts(SeasonInfo& season);
  void PlaceStoredPick(HLIData::KeyedCollection<HLIData::IDraftInfo>& drafts, jet::Recordset& row,
                       const SeasonInfo& season);
  /// The prizes of a season with their amounts.
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IPrizeInfo>> LoadMoneyDistribution(std::int32_t seasonID);
  /// The prizes won in a season. Shows its failure and returns an empty reference.
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IWinningInfo>> LoadWinnings(std::int32_t seasonID);
  std::shared_ptr<HLIData::IManagerTmplInfo> ManagerTmplByID(std::int32_t managerID);
  /// Raises UnknownKey for a team that there is not.
  std::shared_ptr<TeamInfo> TeamByID(std::int32_t teamID);

  // Search, one routine a kind. Each shows its failure and returns an empty reference.

  using Found = HLIData::KeyedCollection<HLIData::IPickable>;
  std::shared_ptr<Found> SearchPlayersAndTeams(const std::string& text, bool skipRetired);
  std::shared_ptr<Found> SearchManagers(const std::string& text, bool curSeasonOnly);
  std::shared_ptr<Found> SearchPrizes(const std::string& text, bool curSeasonOnly);
  std::shared_ptr<Found> SearchPositions(const std::string& text);
  template <typename Work>
  std::shared_ptr<Found> ShowSearch(const char* sentence, Work&& work);

  // Steps of saving. They raise what goes wrong.

  /// Runs the writing part of an operation as one transaction, inside that of the client if there is one. It
  /// is committed also when `write` raises, and then the error is passed on: an error leaves what was written
  /// before it, a crash leaves nothing.
  ///
  /// No records are loaded, and nothing is shown or announced in `write`: a message box or an event may call
  /// the service. So may records of the client's, which raise then if they close the database.
  void Write(const std::function<void(Writes& writes)>& write);
  /// SeasonByID as the first step of an operation whose later errors go to the caller: shows its failure with
  /// the operation's sentence, and returns false.
  bool FetchSeason(std::int32_t seasonID, const std::string& sentence, std::shared_ptr<SeasonInfo>& season);
  /// Adds or edits the row of a pick of a season. Raises ObjectNotSet for one without a manager.
  void WritePick(Writes& writes, std::int32_t seasonID, const DraftInfo& pick);
  void ReplaceMoneyDistribution(Writes& writes, std::int32_t seasonID, const SeasonInfo& season);
  /// Sets a yes/no column of the current season's row.
  void WriteLock(const std::string& column);
  /// Adds and deletes the rows of dirty winnings; their flags and identifiers follow on commit.
  void WriteWinnings(Writes& writes, std::int32_t seasonID,
                     const std::shared_ptr<HLIData::KeyedCollection<HLIData::IWinningInfo>>& winnings);
  /// The identifier for a new row of a table.
  std::int32_t NextID(const std::string& table);
  /// Adds a row with an identifier to a table, or edits the one that has it; `fill` assigns other columns.
  void WriteRecord(const std::string& table, const jet::Value& id, bool isNew,
                   const std::function<void(jet::Recordset& row)>& fill);
  void RemoveFromCache(HLIData::DeleteType deleteType, std::int32_t id);

  std::shared_ptr<Host> m_host;
  std::shared_ptr<void> m_clientTransaction = std::make_shared<char>();
  std::shared_ptr<jet::Database> m_database;
  std::int32_t m_currentSeasonID = 0;
  std::int32_t m_currentSeasonYear = 0;
  /// Lists whose loading has failed, and was shown, in the operation that is under way.
  struct ShownLists {
    bool positions = false;
    bool teams = false;
    bool prizes = false;
  };
  ShownLists m_shown;
  std::int32_t m_operations = 0;             // under way, one inside the other
  std::vector<std::string> m_partialDrafts;  // to be shown at the end of the outermost
  std::int32_t m_newWinnings = 0;            // handed out so far by AddWinning, whatever the season
  ServiceCaches m_caches;
  std::shared_ptr<SettingInfo> m_settings;  // we are registered with it for as long as we hold it
  HLIData::DBType m_databaseKind{};
  std::exception_ptr m_openingError;
};

}  // namespace HLDataSrvc
