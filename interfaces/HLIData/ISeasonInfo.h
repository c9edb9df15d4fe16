#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/IDraftInfo.h"
#include "HLIData/IManagerInfo.h"
#include "HLIData/IManagerTmplInfo.h"
#include "HLIData/IPickable.h"
#include "HLIData/IPrizeInfo.h"
#include "HLIData/IPrizeTmplInfo.h"
#include "HLIData/IWinningInfo.h"
#include "HLIData/KeyedCollection.h"
#include "HLIData/Visibility.h"

namespace HLIData {

/// One season of the league, in memory: its settings, its locks, and who plays, picks, offers and wins what.
///
/// Made by the service, which writes it back on request. The getters of collections hand out the season's
/// own collection object: what is changed in it is changed in the season. Nothing here checks the lock flags;
/// honouring them is the caller's business.
class HLIDATA_TYPE ISeasonInfo {
 public:
  virtual ~ISeasonInfo() = default;

  virtual std::int32_t ID() const = 0;
  virtual std::int32_t Year() const = 0;
  virtual void Year(std::int32_t value) = 0;
  /// Managers in the draft: the length of a draft round.
  virtual std::int32_t NoOfManagers() const = 0;
  virtual void NoOfManagers(std::int32_t value) = 0;
  virtual std::int32_t NoOfRounds() const = 0;
  virtual void NoOfRounds(std::int32_t value) = 0;
  /// What each manager pays in, in whole currency units.
  virtual std::int32_t MoneyContribution() const = 0;
  virtual void MoneyContribution(std::int32_t value) = 0;
  /// The prizes put up, under "K" and the prize's identifier. Setting replaces the collection object.
  virtual std::shared_ptr<KeyedCollection<IPrizeInfo>> Prizes() const = 0;
  virtual void Prizes(const std::shared_ptr<KeyedCollection<IPrizeInfo>>& value) = 0;
  virtual std::int32_t NoOfRegularWeeks() const = 0;
  virtual void NoOfRegularWeeks(std::int32_t value) = 0;
  /// All weeks, those after the regular season included.
  virtual std::int32_t TotalNoOfWeeks() const = 0;
  virtual void TotalNoOfWeeks(std::int32_t value) = 0;
  virtual bool IsRankingLocked() const = 0;
  virtual void IsRankingLocked(bool value) = 0;
  virtual bool IsDraftLocked() const = 0;
  virtual void IsDraftLocked(bool value) = 0;
  virtual bool IsSeasonLocked() const = 0;
  virtual void IsSeasonLocked(bool value) = 0;
  virtual bool HasSeasonStarted() const = 0;
  virtual void HasSeasonStarted(bool value) = 0;
  /// The managers taking part, in ranking order, under "K" and the manager's identifier.
  virtual std::shared_ptr<KeyedCollection<IManagerInfo>> Managers() const = 0;
  virtual std::shared_ptr<KeyedCollection<IWinningInfo>> Winnings() const = 0;
  /// One entry per pick number, in pick order: under "P" or "T" and what was picked, or "N" and the pick
  /// number.
  virtual std::shared_ptr<KeyedCollection<IDraftInfo>> Drafts() const = 0;
  /// The pick number that is due next; never below 1 once set.
  virtual std::int32_t CurrentPick() const = 0;

  /// Whether what `oPick` stands for is in the season already: among the picks, the managers or the prizes.
  /// Anything else, and any error on the way, counts as taken. For a player or team that is taken,
  /// `errMessage` becomes the round, the manager's last name and the pick's name with tabs between; else it
  /// is left alone.
  virtual bool IsPickableTaken(const std::shared_ptr<IPickable>& oPick, std::string& errMessage) = 0;
  /// Records that `oMgr` picked `pickedInfo` at pick `curPick`. Ask IsPickableTaken first: raises BadPosition
  /// for a pick number outside the draft, and, after the pick was taken out for good, DuplicateKey for
  /// something picked already and ObjectNotSet for an empty `pickedInfo`. A player or team that is not one of
  /// the service's records raises TypeMismatch, when the pick stands under its new key already.
  virtual void UpdateDraft(const std::shared_ptr<IPickable>& pickedInfo, std::int32_t curPick,
                           const std::shared_ptr<IManagerInfo>& oMgr) = 0;
  /// Empties pick `curPick`. Raises BadPosition for a pick number outside the draft.
  virtual void RemoveDraft(std::int32_t curPick) = 0;
  /// Puts a prize up with the amount 0 unless it is there already. False only on an error.
  virtual bool AddPrize(const std::shared_ptr<IPrizeTmplInfo>& oPrizeTmpl) = 0;
  /// Lets a manager take part unless he does already. False only on an error.
  virtual bool AddManager(const std::shared_ptr<IManagerTmplInfo>& oMgrTmpl) = 0;
  /// Takes a manager out; false when he does not take part.
  virtual bool RemoveManager(const std::shared_ptr<IManagerInfo>& oMgr) = 0;
};

}  // namespace HLIData
