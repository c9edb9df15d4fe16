#include "com/Classes.h"

#include <memory>

#include "HLDataSrvc/CreateDataService.h"
#include "com/References.h"
#include "records/DraftInfo.h"
#include "records/ManagerInfo.h"
#include "records/ManagerTmplInfo.h"
#include "records/PlayerInfo.h"
#include "records/PositionInfo.h"
#include "records/PrizeInfo.h"
#include "records/PrizeTmplInfo.h"
#include "records/PrizeTypeInfo.h"
#include "records/SeasonInfo.h"
#include "records/SettingInfo.h"
#include "records/TeamInfo.h"
#include "records/WinningInfo.h"

namespace HLDataSrvc::Com {
namespace {

template <typename Record, typename Interface>
ComPtr<IUnknown> New() {
  return Wrap(std::shared_ptr<Interface>(std::make_shared<Record>())).template As<IUnknown>();
}

ComPtr<IUnknown> NewService() {
  return Wrap(CreateDataService()).As<IUnknown>();
}

using Prizes = HLIData::KeyedCollection<HLIData::IPrizeInfo>;

const ClassEntry kClasses[] = {
    {&__uuidof(::DataService), L"DataService", L"Halcyra data service", &NewService},
    {&__uuidof(::SeasonInfo), L"SeasonInfo", L"Halcyra season", &New<SeasonInfo, HLIData::ISeasonInfo>},
    {&__uuidof(::ManagerInfo), L"ManagerInfo", L"Halcyra manager of a season",
     &New<ManagerInfo, HLIData::IManagerInfo>},
    {&__uuidof(::ManagerTmplInfo), L"ManagerTmplInfo", L"Halcyra manager",
     &New<ManagerTmplInfo, HLIData::IManagerTmplInfo>},
    {&__uuidof(::PlayerInfo), L"PlayerInfo", L"Halcyra player", &New<PlayerInfo, HLIData::IPlayerInfo>},
    {&__uuidof(::TeamInfo), L"TeamInfo", L"Halcyra team", &New<TeamInfo, HLIData::ITeamInfo>},
    {&__uuidof(::PositionInfo), L"PositionInfo", L"Halcyra position",
     &New<PositionInfo, HLIData::IPositionInfo>},
    {&__uuidof(::PrizeInfo), L"PrizeInfo", L"Halcyra prize of a season",
     &New<PrizeInfo, HLIData::IPrizeInfo>},
    {&__uuidof(::PrizeTmplInfo), L"PrizeTmplInfo", L"Halcyra prize",
     &New<PrizeTmplInfo, HLIData::IPrizeTmplInfo>},
    {&__uuidof(::PrizeTypeInfo), L"PrizeTypeInfo", L"Halcyra prize type",
     &New<PrizeTypeInfo, HLIData::IPrizeTypeInfo>},
    {&__uuidof(::DraftInfo), L"DraftInfo", L"Halcyra pick", &New<DraftInfo, HLIData::IDraftInfo>},
    {&__uuidof(::WinningInfo), L"WinningInfo", L"Halcyra winning", &New<WinningInfo, HLIData::IWinningInfo>},
    {&__uuidof(::SettingInfo), L"SettingInfo", L"Halcyra settings", &New<SettingInfo, HLIData::ISettingInfo>},
    {&__uuidof(::PrizeCollection), L"PrizeCollection", L"Halcyra prizes", &New<Prizes, Prizes>},
};

}  // namespace

std::span<const ClassEntry> Classes() {
  return kClasses;
}

}  // namespace HLDataSrvc::Com
