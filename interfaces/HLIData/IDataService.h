#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IManagerTmplInfo.h"
#include "HLIData/IPickable.h"
#include "HLIData/IPlayerInfo.h"
#include "HLIData/IPositionInfo.h"
#include "HLIData/IPrizeTmplInfo.h"
#include "HLIData/IPrizeTypeInfo.h"
#include "HLIData/ISeasonInfo.h"
#include "HLIData/ISettingInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLIData/IWinningInfo.h"
#include "HLIData/KeyedCollection.h"
#include "HLIData/Types.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// The data service: the one door to a league's database file.
///
/// Create one with HLDataSrvc::CreateDataService, call `Initialize`, then anything. Records are read on first
/// use, kept, and handed out by reference: the service and all its callers share the same objects. Releasing
/// the last reference closes the database. Use it from the thread that created it.
///
/// How failures are reported: operations with an `errorMessage` return false and put a sentence there. The
/// other loading and saving operations show one message box, the operation's sentence and the error's
/// description, and return false or an empty reference. Members documented as raising let the error through.
class HLIDATA_TYPE IDataService {
 public:
  virtual ~IDataService() = default;

  /// Identifier of the current season; 0 until it is known.
  virtual std::int32_t CurrentSeasonID() const = 0;
  /// Only stores the identifier: year and settings stay as they are.
  virtual void CurrentSeasonID(std::int32_t value) = 0;
  /// Year of the current season; 0 until it was set here.
  virtual std::int32_t CurrentSeasonYear() const = 0;
  /// Makes the season of that year the current one, creating it if needed, and saves the settings. Raises
  /// whatever goes wrong on the way.
  virtual void CurrentSeasonYear(std::int32_t seasonYear) = 0;

  /// The current season; with no season current yet, that of today's year.
  virtual std::shared_ptr<ISeasonInfo> GetCurrentSeasonInfo() = 0;
  /// Forgets the current season, so that the next request reads it again. Answers true.
  virtual bool DiscardCurrentSeasonInfo() = 0;
  /// Creates a season for a year and returns it.
  virtual std::shared_ptr<ISeasonInfo> AddSeason(std::int32_t seasonYear) = 0;
  /// Writes the current season's own row and its money distribution, then reads the season again.
  virtual bool SaveCurrentSeasonInfo() = 0;
  /// All seasons, under "K" and the season's identifier.
  virtual std::shared_ptr<KeyedCollection<ISeasonInfo>> GetAllSeasons() = 0;

  /// Chooses the kind of database, opens its file and loads the settings.
  virtual bool Initialize(DBType dbType, std::string& errorMessage) = 0;

  /// Writes who takes part in the current season, with fee and rank.
  virtual bool SaveManagersPlaying() = 0;
  /// Writes the managers' ranks of the current season.
  virtual bool SaveRanking() = 0;
  /// Locks the ranking of the current season, for good.
  virtual bool DisableRanking() = 0;
  /// The cache of positions itself, under "K" and the identifier; not to be changed.
  virtual std::shared_ptr<KeyedCollection<IPositionInfo>> GetPlayerPositions() = 0;
  /// Writes the picks of the current season that changed.
  virtual bool SaveDrafts() = 0;
  /// Deletes the picks of the current season.
  virtual bool DeleteDrafts() = 0;
  /// Locks the draft of the current season, for good.
  virtual bool DisableDrafting() = 0;
  /// The cache of teams itself, under "K" and the identifier; not to be changed.
  virtual std::shared_ptr<KeyedCollection<ITeamInfo>> GetTeams() = 0;
  /// The records whose names match, without keys, in the order of their names; an empty reference for a
  /// search type without a name. `curSeasonOnly` counts for managers and prizes, `skipRetiredPlayers` for
  /// players.
  virtual std::shared_ptr<KeyedCollection<IPickable>> Search(SearchType searchType,
                                                             const std::string& searchText,
                                                             bool curSeasonOnly, bool skipRetiredPlayers) = 0;
  /// The settings, read on first use.
  virtual std::shared_ptr<ISettingInfo> GetSettings() = 0;
  /// Writes the settings if they changed.
  virtual bool SaveSettings() = 0;

  /// Adds (`id` 0, which becomes the new identifier) or changes a player. The four Update operations fill
  /// `errMessage` only for a value that is missing.
  virtual bool UpdatePlayer(const std::string& lastName, const std::string& firstName, std::int32_t position,
                            std::int32_t team, bool isRetired, std::int32_t& id,
                            std::shared_ptr<IPlayerInfo>& oNewPlayer, std::string& errMessage) = 0;
  virtual bool UpdatePosition(const std::string& desc, const std::string& abbr, std::int32_t& id,
                              std::shared_ptr<IPositionInfo>& oNewPosition, std::string& errMessage) = 0;
  virtual bool UpdateManager(const std::string& lastName, const std::string& firstName, std::int32_t& id,
                             std::shared_ptr<IManagerTmplInfo>& oNewManagerTmpl, std::string& errMessage) = 0;
  virtual bool UpdatePrize(const std::string& desc, std::int32_t prizeTypeID, std::int32_t& id,
                           std::shared_ptr<IPrizeTmplInfo>& oNewPrize, std::string& errMessage) = 0;

  /// The cache of prize master records itself, under "K" and the identifier; not to be changed.
  virtual std::shared_ptr<KeyedCollection<IPrizeTmplInfo>> GetPrizeTmpls() = 0;
  /// The cache of prize types itself, under "K" and the identifier; not to be changed. Raises what goes
  /// wrong.
  virtual std::shared_ptr<KeyedCollection<IPrizeTypeInfo>> GetPrizeTypes() = 0;
  /// Makes a new winning of the current season and hands it out in `oNewWin`; the caller fills it.
  virtual bool AddWinning(std::shared_ptr<IWinningInfo>& oNewWin) = 0;
  /// Writes the winnings of the current season that are to be added or deleted.
  virtual bool SaveWinnings() = 0;

  /// Lets go of the database file; with none open it does nothing. Raises what the engine's closing raises.
  virtual void CloseDatabase() = 0;
  /// Opens the file of the kind given to Initialize again; `clearCache` forgets all records once it is open.
  /// When it fails, a database that was open stays open.
  virtual bool OpenDatabase(bool clearCache, std::string& errorMessage) = 0;
  /// Deletes a master record that no other record refers to.
  virtual bool Delete(DeleteType deleteType, std::int32_t id, std::string& errorMessage) = 0;
};

}  // namespace HLIData
