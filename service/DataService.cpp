#include "service/DataService.h"

#include <exception>
#include <string>
#include <utility>

#include "HLIData/Error.h"
#include "jet/Error.h"
#include "jet/dao/Database.h"
#include "records/SeasonInfo.h"
#include "records/SettingInfo.h"
#include "service/Failures.h"
#include "service/Writes.h"

namespace HLDataSrvc {
namespace {

/// Raises the error that ended an operation together with the one because of which not even what was written
/// before it is stored.
[[noreturn]] void RaiseBoth(const std::exception_ptr& error, const jet::Error& notCommitted) {
  std::string text;
  try {
    std::rethrow_exception(error);
  } catch (const ShownError&) {
    // Its message box is there already.
  } catch (const std::exception& first) {
    text = std::string(first.what()) + " ";
  }
  jet::Error both(notCommitted.Number(), text + notCommitted.what());
  if (notCommitted.IsUncertain()) both.MarkUncertain();
  throw both;
}

}  // namespace

DataService::DataService(std::shared_ptr<Host> host) : m_host(std::move(host)) {}

DataService::~DataService() {
  try {
    CloseDatabase();
  } catch (const std::exception&) {
    // A destructor must not throw. Committed changes stay in the log, and opening the file replays it.
  }
  m_database.reset();
  if (m_settings) m_settings->RemoveObserver(*this);
  m_settings.reset();
  m_caches.Clear();
}

void DataService::CurrentSeasonYear(std::int32_t seasonYear) {
  const Operation operation(*this);
  auto season = FindCached(m_caches.seasonsByYear, seasonYear);
  if (!season) season = LoadSeason(0, seasonYear);
  if (!season) season = AddSeason(seasonYear);
  if (!season) return;

  m_currentSeasonID = season->ID();
  m_currentSeasonYear = seasonYear;
  if (!m_settings) throw HLIData::Error(HLIData::ErrorNumber::ObjectNotSet, "The settings are not loaded.");
  m_settings->CurrentSeason(m_currentSeasonID);
  SaveSettings();
}

void DataService::ShowPartialDrafts() noexcept {
  try {
    std::string text;
    for (const std::string& problem : std::exchange(m_partialDrafts, {}))
      text += HLConsts::kLineBreak + problem;
    if (!text.empty()) m_host->ShowMessage("Error in loading drafts." + text, HLConsts::kServiceTitle);
  } catch (...) {
    // The host cannot show it.
  }
}

void DataService::SettingsChanged() {
  m_currentSeasonID = m_settings->CurrentSeason();
}

jet::Database& DataService::Database() const {
  if (!m_database) throw HLIData::Error(HLIData::ErrorNumber::ObjectNotSet, "The database is not open.");
  return *m_database;
}

void DataService::Write(const std::function<void(Writes& writes)>& write) {
  Writes writes(*this);
  std::exception_ptr error;
  try {
    write(writes);
  } catch (...) {
    error = std::current_exception();
  }
  try {
    writes.Commit();
  } catch (const jet::Error& notCommitted) {
    if (!error) throw;
    RaiseBoth(error, notCommitted);
  } catch (...) {
    if (!error) throw;
  }
  if (error) std::rethrow_exception(error);
}

}  // namespace HLDataSrvc
