#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HLIData/ISeasonInfo.h"

namespace HLDataSrvc {

/// One season: settings, locks and four collections.
///
/// Starts with zeros and without collections; the loader gives it its own. A collection that is missing holds
/// nothing when something is looked up in it, and raises ObjectNotSet when it is to be changed.
class SeasonInfo final : public HLIData::ISeasonInfo {
 public:
  template <typename T>
  using Collection = std::shared_ptr<HLIData::KeyedCollection<T>>;

  std::int32_t ID() const override { return m_id; }
  std::int32_t Year() const override { return m_year; }
  void Year(std::int32_t value) override { m_year = value; }
  std::int32_t NoOfManagers() const override { return m_noOfManagers; }
  void NoOfManagers(std::int32_t value) override { m_noOfManagers = value; }
  std::int32_t NoOfRounds() const override { return m_noOfRounds; }
  void NoOfRounds(std::int32_t value) override { m_noOfRounds = value; }
  std::int32_t MoneyContribution() const override { return m_moneyContribution; }
  void MoneyContribution(std::int32_t value) override { m_moneyContribution = value; }
  Collection<HLIData::IPrizeInfo> Prizes() const override { return m_prizes; }
  void Prizes(const Collection<HLIData::IPrizeInfo>& value) override { m_prizes = value; }
  std::int32_t NoOfRegularWeeks() const override { return m_noOfRegularWeeks; }
  void NoOfRegularWeeks(std::int32_t value) override { m_noOfRegularWeeks = value; }
  std::int32_t TotalNoOfWeeks() const override { return m_totalNoOfWeeks; }
  void TotalNoOfWeeks(std::int32_t value) override { m_totalNoOfWeeks = value; }
  bool IsRankingLocked() const override { return m_isRankingLocked; }
  void IsRankingLocked(bool value) override { m_isRankingLocked = value; }
  bool IsDraftLocked() const override { return m_isDraftLocked; }
  void IsDraftLocked(bool value) override { m_isDraftLocked = value; }
  bool IsSeasonLocked() const override { return m_isSeasonLocked; }
  void IsSeasonLocked(bool value) override { m_isSeasonLocked = value; }
  bool HasSeasonStarted() const override { return m_hasSeasonStarted; }
  void HasSeasonStarted(bool value) override { m_hasSeasonStarted = value; }
  Collection<HLIData::IManagerInfo> Managers() const override { return m_managers; }
  Collection<HLIData::IWinningInfo> Winnings() const override { return m_winnings; }
  Collection<HLIData::IDraftInfo> Drafts() const override { return m_drafts; }
  std::int32_t CurrentPick() const override { return m_currentPick; }
  bool IsPickableTaken(const std::shared_ptr<HLIData::IPickable>& oPick, std::string& errMessage) override;
  void UpdateDraft(const std::shared_ptr<HLIData::IPickable>& pickedInfo, std::int32_t curPick,
                   const std::shared_ptr<HLIData::IManagerInfo>& oMgr) override;
  void RemoveDraft(std::int32_t curPick) override;
  bool AddPrize(const std::shared_ptr<HLIData::IPrizeTmplInfo>& oPrizeTmpl) override;
  bool AddManager(const std::shared_ptr<HLIData::IManagerTmplInfo>& oMgrTmpl) override;
  bool RemoveManager(const std::shared_ptr<HLIData::IManagerInfo>& oMgr) override;

  // For this component only.
  void ID(std::int32_t value) { m_id = value; }
  void Managers(const Collection<HLIData::IManagerInfo>& value) { m_managers = value; }
  void Winnings(const Collection<HLIData::IWinningInfo>& value) { m_winnings = value; }
  void Drafts(const Collection<HLIData::IDraftInfo>& value) { m_drafts = value; }
  /// A value below 1 is stored as 1.
  void CurrentPick(std::int32_t value) { m_currentPick = value < 1 ? 1 : value; }

 private:
  /// Takes the pick at position `curPick` out of the draft and returns it.
  std::shared_ptr<HLIData::IDraftInfo> RemovePick(std::int32_t curPick);
  /// Round, last name and pick name of something that was picked already, with tabs between.
  std::string TakenMessage(const HLIData::IDraftInfo& draft, const HLIData::IPickable& pick) const;

  std::int32_t m_id = 0;
  std::int32_t m_year = 0;
  std::int32_t m_noOfManagers = 0;
  std::int32_t m_noOfRounds = 0;
  std::int32_t m_moneyContribution = 0;
  std::int32_t m_noOfRegularWeeks = 0;
  std::int32_t m_totalNoOfWeeks = 0;
  bool m_isRankingLocked = false;
  bool m_isDraftLocked = false;
  bool m_isSeasonLocked = false;
  bool m_hasSeasonStarted = false;
  std::int32_t m_currentPick = 0;
  Collection<HLIData::IPrizeInfo> m_prizes;
  Collection<HLIData::IManagerInfo> m_managers;
  Collection<HLIData::IWinningInfo> m_winnings;
  Collection<HLIData::IDraftInfo> m_drafts;
};

}  // namespace HLDataSrvc
