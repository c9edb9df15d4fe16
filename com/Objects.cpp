// Which object stands for which kind of record.

#include "com/DataServiceObject.h"
#include "com/ForeignPickable.h"
#include "com/MasterRecordObjects.h"
#include "com/SeasonRecordObjects.h"
#include "com/SettingInfoObject.h"

namespace HLDataSrvc::Com {
namespace {

template <typename Object, typename Record>
ComPtr<IUnknown> MakePlain(const std::shared_ptr<Record>& record) {
  return Make<Object>(record).template As<IUnknown>();
}

template <typename Object, typename Record>
ComPtr<IUnknown> MakePickable(const std::shared_ptr<Record>& record) {
  auto pickable = std::dynamic_pointer_cast<HLIData::IPickable>(record);
  if (!pickable) throw ComError(E_UNEXPECTED, "A master record cannot be picked.");
  return Make<Object>(record, std::move(pickable)).template As<IUnknown>();
}

/// The object of a pickable, provided that it is a `Record`.
template <typename Record>
bool MakeIf(const std::shared_ptr<HLIData::IPickable>& pickable, ComPtr<IUnknown>& object) {
  const auto record = std::dynamic_pointer_cast<Record>(pickable);
  if (record) object = MakeObject(record);
  return record != nullptr;
}

}  // namespace

ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IDataService>& service) {
  return MakePlain<DataServiceObject>(service);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IDraftInfo>& record) {
  return MakePlain<DraftInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IManagerInfo>& record) {
  return MakePlain<ManagerInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IManagerTmplInfo>& record) {
  return MakePickable<ManagerTmplInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPlayerInfo>& record) {
  return MakePickable<PlayerInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPositionInfo>& record) {
  return MakePickable<PositionInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPrizeInfo>& record) {
  return MakePlain<PrizeInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPrizeTmplInfo>& record) {
  return MakePickable<PrizeTmplInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPrizeTypeInfo>& record) {
  return MakePlain<PrizeTypeInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::ISeasonInfo>& record) {
  return MakePlain<SeasonInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::ISettingInfo>& record) {
  return MakePlain<SettingInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::ITeamInfo>& record) {
  return MakePickable<TeamInfoObject>(record);
}
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IWinningInfo>& record) {
  return MakePlain<WinningInfoObject>(record);
}

ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPickable>& record) {
  if (const auto* foreign = dynamic_cast<const ForeignPickable*>(record.get()))
    return foreign->Object().As<IUnknown>();
  ComPtr<IUnknown> object;
  const bool isMade =
      MakeIf<HLIData::IPlayerInfo>(record, object) || MakeIf<HLIData::ITeamInfo>(record, object) ||
      MakeIf<HLIData::IManagerTmplInfo>(record, object) || MakeIf<HLIData::IPrizeTmplInfo>(record, object) ||
      MakeIf<HLIData::IPositionInfo>(record, object);
  if (!isMade) throw ComError(E_UNEXPECTED, "Something to pick is of no known kind.");
  return object;
}

}  // namespace HLDataSrvc::Com
