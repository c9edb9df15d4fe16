#pragma once

#include "com/RecordObject.h"

/// The objects of master records: each member goes straight on to the record.
namespace HLDataSrvc::Com {

/// A playing position.
class PositionInfoObject final : public PickableObject<HLIData::IPositionInfo, ::IPositionInfo> {
 public:
  using PickableObject::PickableObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Abbr(BSTR* value) noexcept override { return Get(value, &Record::Abbr); }
  STDMETHODIMP get_Desc(BSTR* value) noexcept override { return Get(value, &Record::Desc); }
};

/// A professional team.
class TeamInfoObject final : public PickableObject<HLIData::ITeamInfo, ::ITeamInfo> {
 public:
  using PickableObject::PickableObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Abbr(BSTR* value) noexcept override { return Get(value, &Record::Abbr); }
  STDMETHODIMP get_Name(BSTR* value) noexcept override { return Get(value, &Record::Name); }
  STDMETHODIMP get_Nickname(BSTR* value) noexcept override { return Get(value, &Record::Nickname); }
  STDMETHODIMP get_Position(::IPositionInfo** value) noexcept override {
    return Get(value, &Record::Position);
  }
};

/// A player.
class PlayerInfoObject final : public PickableObject<HLIData::IPlayerInfo, ::IPlayerInfo> {
 public:
  using PickableObject::PickableObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_LastName(BSTR* value) noexcept override { return Get(value, &Record::LastName); }
  STDMETHODIMP get_FirstName(BSTR* value) noexcept override { return Get(value, &Record::FirstName); }
  STDMETHODIMP get_Position(::IPositionInfo** value) noexcept override {
    return Get(value, &Record::Position);
  }
  STDMETHODIMP get_Team(::ITeamInfo** value) noexcept override { return Get(value, &Record::Team); }
  STDMETHODIMP get_IsRetired(VARIANT_BOOL* value) noexcept override { return Get(value, &Record::IsRetired); }
};

/// A manager's master record.
class ManagerTmplInfoObject final : public PickableObject<HLIData::IManagerTmplInfo, ::IManagerTmplInfo> {
 public:
  using PickableObject::PickableObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_FirstName(BSTR* value) noexcept override { return Get(value, &Record::FirstName); }
  STDMETHODIMP get_LastName(BSTR* value) noexcept override { return Get(value, &Record::LastName); }
};

/// A kind of prize.
class PrizeTypeInfoObject final : public RecordObject<HLIData::IPrizeTypeInfo, ::IPrizeTypeInfo> {
 public:
  using RecordObject::RecordObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Name(BSTR* value) noexcept override { return Get(value, &Record::Name); }
};

/// A prize's master record.
class PrizeTmplInfoObject final : public PickableObject<HLIData::IPrizeTmplInfo, ::IPrizeTmplInfo> {
 public:
  using PickableObject::PickableObject;

  STDMETHODIMP get_ID(LONG* value) noexcept override { return Get(value, &Record::ID); }
  STDMETHODIMP get_Desc(BSTR* value) noexcept override { return Get(value, &Record::Desc); }
  STDMETHODIMP get_PrizeType(::IPrizeTypeInfo** value) noexcept override {
    return Get(value, &Record::PrizeType);
  }
};

}  // namespace HLDataSrvc::Com
