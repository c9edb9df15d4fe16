#pragma once

#include "com/RecordObject.h"

namespace HLDataSrvc::Com {

/// The data service.
class DataServiceObject final : public RecordObject<HLIData::IDataService, ::IDataService> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_CurrentSeasonID(LONG* value) noexcept override {
    return Get(value, &Record::CurrentSeasonID);
  }
  STDMETHODIMP put_CurrentSeasonID(LONG value) noexcept override {
    return Put(value, &Record::CurrentSeasonID);
  }
  STDMETHODIMP get_CurrentSeasonYear(LONG* value) noexcept override {
    return Get(value, &Record::CurrentSeasonYear);
  }
  STDMETHODIMP put_CurrentSeasonYear(LONG value) noexcept override {
    return Put(value, &Record::CurrentSeasonYear);
  }
  STDMETHODIMP GetCurrentSeasonInfo(::ISeasonInfo** result) noexcept override {
    return Call(result, &Record::GetCurrentSeasonInfo);
  }
  STDMETHODIMP DiscardCurrentSeasonInfo(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::DiscardCurrentSeasonInfo);
  }
  STDMETHODIMP AddSeason(LONG seasonYear, ::ISeasonInfo** result) noexcept override {
    return Call(result, &Record::AddSeason, seasonYear);
  }
  STDMETHODIMP SaveCurrentSeasonInfo(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::SaveCurrentSeasonInfo);
  }
  STDMETHODIMP GetAllSeasons(::IKeyedCollection** result) noexcept override {
    return Call(result, &Record::GetAllSeasons);
  }
  STDMETHODIMP Initialize(LONG dbType, BSTR* errorMessage, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::Initialize, dbType, errorMessage);
  }
  STDMETHODIMP SaveManagersPlaying(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::SaveManagersPlaying);
  }
  STDMETHODIMP SaveRanking(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::SaveRanking);
  }
  STDMETHODIMP DisableRanking(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::DisableRanking);
  }
  STDMETHODIMP GetPlayerPositions(::IKeyedCollection** result) noexcept override {
    return Call(result, &Record::GetPlayerPositions);
  }
  STDMETHODIMP SaveDrafts(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::SaveDrafts);
  }
  STDMETHODIMP DeleteDrafts(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::DeleteDrafts);
  }
  STDMETHODIMP DisableDrafting(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::DisableDrafting);
  }
  STDMETHODIMP GetTeams(::IKeyedCollection** result) noexcept override {
    return Call(result, &Record::GetTeams);
  }
  STDMETHODIMP Search(LONG searchType, BSTR searchText, VARIANT_BOOL curSeasonOnly,
                      VARIANT_BOOL skipRetiredPlayers, ::IKeyedCollection** result) noexcept override {
    return Call(result, &Record::Search, searchType, searchText, curSeasonOnly, skipRetiredPlayers);
  }
  STDMETHODIMP GetSettings(::ISettingInfo** result) noexcept override {
    return Call(result, &Record::GetSettings);
  }
  STDMETHODIMP SaveSettings(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::SaveSettings);
  }
  STDMETHODIMP UpdatePlayer(BSTR lastName, BSTR firstName, LONG position, LONG team, VARIANT_BOOL isRetired,
                            LONG* id, ::IPlayerInfo** oNewPlayer, BSTR* errMessage,
                            VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::UpdatePlayer, lastName, firstName, position, team, isRetired, id, oNewPlayer,
                errMessage);
  }
  STDMETHODIMP UpdatePosition(BSTR desc, BSTR abbr, LONG* id, ::IPositionInfo** oNewPosition,
                              BSTR* errMessage, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::UpdatePosition, desc, abbr, id, oNewPosition, errMessage);
  }
  STDMETHODIMP UpdateManager(BSTR lastName, BSTR firstName, LONG* id, ::IManagerTmplInfo** oNewManagerTmpl,
                             BSTR* errMessage, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::UpdateManager, lastName, firstName, id, oNewManagerTmpl, errMessage);
  }
  STDMETHODIMP UpdatePrize(BSTR desc, LONG prizeTypeID, LONG* id, ::IPrizeTmplInfo** oNewPrize,
                           BSTR* errMessage, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::UpdatePrize, desc, prizeTypeID, id, oNewPrize, errMessage);
  }
  STDMETHODIMP GetPrizeTmpls(::IKeyedCollection** result) noexcept override {
    return Call(result, &Record::GetPrizeTmpls);
  }
  STDMETHODIMP GetPrizeTypes(::IKeyedCollection** result) noexcept override {
    return Call(result, &Record::GetPrizeTypes);
  }
  STDMETHODIMP AddWinning(::IWinningInfo** oNewWin, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::AddWinning, oNewWin);
  }
  STDMETHODIMP SaveWinnings(VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::SaveWinnings);
  }
  STDMETHODIMP CloseDatabase() noexcept override { return Run(&Record::CloseDatabase); }
  STDMETHODIMP OpenDatabase(VARIANT_BOOL clearCache, BSTR* errorMessage,
                            VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::OpenDatabase, clearCache, errorMessage);
  }
  STDMETHODIMP Delete(LONG deleteType, LONG id, BSTR* errorMessage, VARIANT_BOOL* result) noexcept override {
    return Call(result, &Record::Delete, deleteType, id, errorMessage);
  }
};

}  // namespace HLDataSrvc::Com
