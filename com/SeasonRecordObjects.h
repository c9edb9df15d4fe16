#pragma once

#include "com/RecordObject.h"

/// The objects of a season and what it is made of: each member goes straight on to the record.
namespace HLDataSrvc::Com {

/// A manager's part in one season.
class ManagerInfoObject final : public RecordObject<HLIData::IManagerInfo, ::IManagerInfo> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_FirstName(BSTR* value) noexcept override { return Get(value, &Record::FirstName); }
  STDMETHODIMP get_LastName(BSTR* value) noexcept override { return Get(value, &Record::LastName); }
  STDMETHODIMP get_Rank(LONG* value) noexcept override { return Get(value, &Record::Rank); }
  STDMETHODIMP put_Rank(LONG value) noexcept override { return Put(value, &Record::Rank); }
  STDMETHODIMP get_IsFeePaid(VARIANT_BOOL* value) noexcept override { return Get(value, &Record::IsFeePaid); }
  STDMETHODIMP put_IsFeePaid(VARIANT_BOOL value) noexcept override { return Put(value, &Record::IsFeePaid); }
  STDMETHODIMP get_ManagerTmpl(::IManagerTmplInfo** value) noexcept override {
    return Get(value, &Record::ManagerTmpl);
  }
};

/// A prize offered in one season.
class PrizeInfoObject final : public RecordObject<HLIData::IPrizeInfo, ::IPrizeInfo> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Desc(BSTR* value) noexcept override { return Get(value, &Record::Desc); }
  STDMETHODIMP get_PrizeType(::IPrizeTypeInfo** value) noexcept override {
    return Get(value, &Record::PrizeType);
  }
  STDMETHODIMP get_Amount(LONG* value) noexcept override { return Get(value, &Record::Amount); }
  STDMETHODIMP put_Amount(LONG value) noexcept override { return Put(value, &Record::Amount); }
  STDMETHODIMP get_PrizeTmpl(::IPrizeTmplInfo** value) noexcept override {
    return Get(value, &Record::PrizeTmpl);
  }
};

/// One prize won.
class WinningInfoObject final : public RecordObject<HLIData::IWinningInfo, ::IWinningInfo> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Key(BSTR* value) noexcept override { return Get(value, &Record::Key); }
  STDMETHODIMP get_SeasonID(LONG* value) noexcept override { return Get(value, &Record::SeasonID); }
  STDMETHODIMP put_SeasonID(LONG value) noexcept override { return Put(value, &Record::SeasonID); }
  STDMETHODIMP get_ManagerID(BSTR* value) noexcept override { return Get(value, &Record::ManagerID); }
  STDMETHODIMP put_ManagerID(BSTR value) noexcept override { return Put(value, &Record::ManagerID); }
  STDMETHODIMP get_PrizeID(BSTR* value) noexcept override { return Get(value, &Record::PrizeID); }
  STDMETHODIMP put_PrizeID(BSTR value) noexcept override { return Put(value, &Record::PrizeID); }
  STDMETHODIMP get_Week(LONG* value) noexcept override { return Get(value, &Record::Week); }
  STDMETHODIMP put_Week(LONG value) noexcept override { return Put(value, &Record::Week); }
  STDMETHODIMP put_Action(LONG value) noexcept override { return Put(value, &Record::Action); }
  STDMETHODIMP get_Action(LONG* value) noexcept override { return Get(value, &Record::Action); }
};

/// One pick of a draft.
class DraftInfoObject final : public RecordObject<HLIData::IDraftInfo, ::IDraftInfo> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_DraftNo(LONG* value) noexcept override { return Get(value, &Record::DraftNo); }
  STDMETHODIMP put_DraftNo(LONG value) noexcept override { return Put(value, &Record::DraftNo); }
  STDMETHODIMP get_PlayerOrTeam(::IPickable** value) noexcept override {
    return Get(value, &Record::PlayerOrTeam);
  }
  STDMETHODIMP putref_PlayerOrTeam(::IPickable* value) noexcept override {
    return Put(value, &Record::PlayerOrTeam);
  }
  STDMETHODIMP get_Manager(::IManagerInfo** value) noexcept override { return Get(value, &Record::Manager); }
  STDMETHODIMP putref_Manager(::IManagerInfo* value) noexcept override {
    return Put(value, &Record::Manager);
  }
};

/// One season.
class SeasonInfoObject final : public RecordObject<HLIData::ISeasonInfo, ::ISeasonInfo> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Year(LONG* value) noexcept override { return Get(value, &Record::Year); }
  STDMETHODIMP put_Year(LONG value) noexcept override { return Put(value, &Record::Year); }
  STDMETHODIMP get_NoOfManagers(LONG* value) noexcept override { return Get(value, &Record::NoOfManagers); }
  STDMETHODIMP put_NoOfManagers(LONG value) noexcept override { return Put(value, &Record::NoOfManagers); }
  STDMETHODIMP get_NoOfRounds(LONG* value) noexcept override { return Get(value, &Record::NoOfRounds); }
  STDMETHODIMP put_NoOfRounds(LONG value) noexcept override { return Put(value, &Record::NoOfRounds); }
  STDMETHODIMP get_MoneyContribution(LONG* value) noexcept override {
    return Get(value, &Record::MoneyContribution);
  }
  STDMETHODIMP put_MoneyContribution(LONG value) noexcept override {
    return Put(value, &Record::MoneyContribution);
  }
  STDMETHODIMP get_Prizes(::IKeyedCollection** value) noexcept override {
    return Get(value, &Record::Prizes);
  }
  STDMETHODIMP putref_Prizes(::IKeyedCollection* value) noexcept override {
    return Put(value, &Record::Prizes);
  }
  STDMETHODIMP get_NoOfRegularWeeks(LONG* value) noexcept override {
    return Get(value, &Record::NoOfRegularWeeks);
  }
  STDMETHODIMP put_NoOfRegularWeeks(LONG value) noexcept override {
    return Put(value, &Record::NoOfRegularWeeks);
  }
  STDMETHODIMP get_TotalNoOfWeeks(LONG* value) noexcept override {
    return Get(value, &Record::TotalNoOfWeeks);
  }
  STDMETHODIMP put_TotalNoOfWeeks(LONG value) noexcept override {
    return Put(value, &Record::TotalNoOfWeeks);
  }
  STDMETHODIMP get_IsRankingLocked(VARIANT_BOOL* value) noexcept override {
    return Get(value, &Record::IsRankingLocked);
  }
  STDMETHODIMP put_IsRankingLocked(VARIANT_BOOL value) noexcept override {
    return Put(value, &Record::IsRankingLocked);
  }
  STDMETHODIMP get_IsDraftLocked(VARIANT_BOOL* value) noexcept override {
    return Get(value, &Record::IsDraftLocked);
  }
  STDMETHODIMP put_IsDraftLocked(VARIANT_BOOL value) noexcept override {
    return Put(value, &Record::IsDraftLocked);
  }
  STDMETHODIMP get_IsSeasonLocked(VARIANT_BOOL* value) noexcept override {
    return Get(value, &Record::IsSeasonLocked);
  }
  STDMETHODIMP put_IsSeasonLocked(VARIANT_BOOL value) noexcept override {
    return Put(value, &Record::IsSeasonLocked);
  }
  STDMETHODIMP get_HasSeasonStarted(VARIANT_BOOL* value) noexcept override {
    return Get(value, &Record::HasSeasonStarted);
  }
  STDMETHODIMP put_HasSeasonStarted(VARIANT_BOOL value) noexcept override {
    return Put(value, &Record::HasSeasonStarted);
  }
  STDMETHODIMP get_Managers(::IKeyedCollection** value) noexcept override {
    return Get(value, &Record::Managers);
  }
  STDMETHODIMP get_Winnings(::IKeyedCollection** value) noexcept override {
    return Get(value, &Record::Winnings);
  }
  STDMETHODIMP get_Drafts(::IKeyedCollection** value) noexcept override {
    return Get(value, &Record::Drafts);
  }
  STDMETHODIMP get_CurrentPick(LONG* value) noexcept override { return Get(value, &Record::CurrentPick); }
  STDMETHODIMP IsPickableTaken(::IPickable* oPick, BSTR* errMessage, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::IsPickableTaken, oPick, errMessage);
  }
  STDMETHODIMP UpdateDraft(::IPickable* pickedInfo, LONG curPick, ::IManagerInfo* oMgr) noexcept override {
    return Run(&Record::UpdateDraft, pickedInfo, curPick, oMgr);
  }
  STDMETHODIMP RemoveDraft(LONG curPick) noexcept override { return Run(&Record::RemoveDraft, curPick); }
  STDMETHODIMP AddPrize(::IPrizeTmplInfo* oPrizeTmpl, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::AddPrize, oPrizeTmpl);
  }
  STDMETHODIMP AddManager(::IManagerTmplInfo* oMgrTmpl, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::AddManager, oMgrTmpl);
  }
  STDMETHODIMP RemoveManager(::IManagerInfo* oMgr, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::RemoveManager, oMgr);
  }
};

}  // namespace HLDataSrvc::Com
