// Seasons: loading, saving, locks.

#include "service/DataService.h"
#include "service/NotAvailable.h"

namespace HLDataSrvc {
namespace {

constexpr char kLoading[] = "Error in loading season info.";
constexpr char kSaving[] = "Error in saving season info.";

}  // namespace

std::shared_ptr<HLIData::ISeasonInfo> DataService::GetCurrentSeasonInfo() {
  return ShowNotAvailable<std::shared_ptr<HLIData::ISeasonInfo>>(*m_host, kLoading);
}

bool DataService::DiscardCurrentSeasonInfo() {
  return ShowNotAvailable<bool>(*m_host, kLoading);
}

std::shared_ptr<HLIData::ISeasonInfo> DataService::AddSeason(std::int32_t) {
  return ShowNotAvailable<std::shared_ptr<HLIData::ISeasonInfo>>(*m_host, kSaving);
}

bool DataService::SaveCurrentSeasonInfo() {
  return ShowNotAvailable<bool>(*m_host, kSaving);
}

std::shared_ptr<HLIData::KeyedCollection<HLIData::ISeasonInfo>> DataService::GetAllSeasons() {
  return ShowNotAvailable<std::shared_ptr<HLIData::KeyedCollection<HLIData::ISeasonInfo>>>(*m_host, kLoading);
}

bool DataService::SaveManagersPlaying() {
  return ShowNotAvailable<bool>(*m_host, "Error in saving playing info.");
}

bool DataService::SaveRanking() {
  return ShowNotAvailable<bool>(*m_host, "Error in saving ranking info.");
}

bool DataService::DisableRanking() {
  return ShowNotAvailable<bool>(*m_host, "Error in disabling ranking.");
}

bool DataService::DisableDrafting() {
  return ShowNotAvailable<bool>(*m_host, "Error in disabling drafting.");
}

std::shared_ptr<HLIData::ISeasonInfo> DataService::LoadSeason(std::int32_t, std::int32_t) {
  RaiseNotAvailable();
}

}  // namespace HLDataSrvc
