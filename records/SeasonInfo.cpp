#include "records/SeasonInfo.h"

#include <exception>
#include <utility>

#include "records/HLUtils.h"
#include "records/ManagerInfo.h"
#include "records/PrizeInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/Succeeds.h"

namespace HLDataSrvc {
namespace {

using HLIData::PickType;

constexpr char kNoDraft[] = "The season has no draft.";
constexpr char kNoPick[] = "There is nothing to pick.";
constexpr char kNoManager[] = "There is no manager.";

/// The item under a key, or an empty reference; a collection that is missing holds nothing.
template <typename T>
std::shared_ptr<T> Find(const SeasonInfo::Collection<T>& collection, const std::string& key) {
  return collection ? collection->Find(key) : nullptr;
}

}  // namespace

bool SeasonInfo::IsPickableTaken(const std::shared_ptr<HLIData::IPickable>& oPick, std::string& errMessage) {
  // When in doubt it is taken: what is neither drafted nor listed stays out of the draft, and so does what
  // cannot be asked. See SeasonDraft.WhatCannotBeJudgedCountsAsTaken.
  try {
    const HLIData::IPickable& pick = Required(oPick, kNoPick);
    const std::string key = HLUtils::MakePickKey(pick.PickType(), pick.PickID());
    switch (pick.PickType()) {
      case PickType::Player:
      case PickType::Team: {
        const auto draft = Find(m_drafts, key);
        if (draft) errMessage = TakenMessage(*draft, pick);
        return draft != nullptr;
      }
      case PickType::ManagerTmpl:
        return Find(m_managers, key) != nullptr;
      case PickType::PrizeTmpl:
        return Find(m_prizes, key) != nullptr;
      default:
        return true;
    }
  } catch (const std::exception&) {
    return true;
  }
}

std::string SeasonInfo::TakenMessage(const HLIData::IDraftInfo& draft, const HLIData::IPickable& pick) const {
  std::int32_t managerPlace = 0;
  std::int32_t round = 0;
  std::int32_t pickInRound = 0;
  HLUtils::GetDraftPosition(draft.DraftNo(), m_noOfManagers, managerPlace, round, pickInRound);
  const std::string lastName = Required(draft.Manager(), kNoManager).LastName();
  return std::to_string(round) + "\t" + lastName + "\t" + pick.PickName();
}

void SeasonInfo::UpdateDraft(const std::shared_ptr<HLIData::IPickable>& pickedInfo, std::int32_t curPick,
                             const std::shared_ptr<HLIData::IManagerInfo>& oMgr) {
  // Deliberately taken out before anything about its successor is known: an error from here on leaves the
  // draft without it, see SeasonDraft.AFailedUpdateLeavesThePickOut.
  const auto draft = RemovePick(curPick);
  const HLIData::IPickable& picked = Required(pickedInfo, kNoPick);
  HLUtils::PutPickBack(*m_drafts, curPick, draft, HLUtils::MakePickKey(picked.PickType(), picked.PickID()));
  draft->PlayerOrTeam(pickedInfo);
  draft->Manager(oMgr);
}

void SeasonInfo::RemoveDraft(std::int32_t curPick) {
  const auto draft = RemovePick(curPick);
  HLUtils::PutPickBack(*m_drafts, curPick, draft, HLUtils::MakePickKey(PickType::None, curPick));
  // The empty reference changes nothing, deliberately: the pick keeps its player or team and its changed
  // flag, and manager and key alone say that it is empty. See SeasonDraft.ARemovedPickKeepsWhatItHeld.
  draft->PlayerOrTeam(nullptr);
  draft->Manager(nullptr);
}

std::shared_ptr<HLIData::IDraftInfo> SeasonInfo::RemovePick(std::int32_t curPick) {
  auto& drafts = Required(m_drafts, kNoDraft);
  auto draft = drafts.Item(curPick);
  drafts.Remove(curPick);
  return draft;
}

bool SeasonInfo::AddPrize(const std::shared_ptr<HLIData::IPrizeTmplInfo>& oPrizeTmpl) {
  return Succeeds([&] {
    const auto& tmpl = Required(oPrizeTmpl, "There is no prize.");
    if (Find(m_prizes, RecordKey(tmpl.ID()))) return;
    const auto prize = std::make_shared<PrizeInfo>();
    prize->PrizeTmpl(oPrizeTmpl);
    Required(m_prizes, "The season has no prizes.").Add(prize, RecordKey(prize->ID()));
  });
}

bool SeasonInfo::AddManager(const std::shared_ptr<HLIData::IManagerTmplInfo>& oMgrTmpl) {
  return Succeeds([&] {
    const std::string key = RecordKey(Required(oMgrTmpl, kNoManager).ID());
    if (Find(m_managers, key)) return;
    const auto manager = std::make_shared<ManagerInfo>();
    manager->ManagerTmpl(oMgrTmpl);
    Required(m_managers, "The season has no managers.").Add(manager, key);
  });
}

bool SeasonInfo::RemoveManager(const std::shared_ptr<HLIData::IManagerInfo>& oMgr) {
  return Succeeds([&] {
    const std::string key = RecordKey(Required(oMgr, kNoManager).ID());
    Required(m_managers, "The season has no managers.").Remove(key);
  });
}

}  // namespace HLDataSrvc
