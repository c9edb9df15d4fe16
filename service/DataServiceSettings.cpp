// The settings row.

#include <cstdint>

#include "jet/Value.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "records/Conversions.h"
#include "records/Failures.h"
#include "records/SettingInfo.h"
#include "service/DataService.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {
namespace {

constexpr char kSelectSettings[] = "select * from [settings] where [ID] = 1";

}  // namespace

std::shared_ptr<HLIData::ISettingInfo> DataService::GetSettings() {
  if (m_settings) return m_settings;
  using Result = std::shared_ptr<HLIData::ISettingInfo>;
  return ShowFailure<Result>(*m_host, "Error in loading settings.", [this](Result& result) {
    // Held before it is filled: after a failure the service keeps this object and does not read the row
    // again.
    m_settings = std::make_shared<SettingInfo>();
    m_settings->AddObserver(*this);
    const auto rows = Database().OpenRecordset(kSelectSettings);
    if (!rows->Eof()) {
      // Strict: a Null identifier is an error here, and not 0.
      const std::string text = rows->Fields(Schema::Settings::kCurrentSeasonID).Value().ToText();
      m_settings->CurrentSeason(Conversions::WholeInt32(text));
    }
    rows->Close();
    result = m_settings;
  });
}

bool DataService::SaveSettings() {
  return ShowFailure<bool>(*m_host, "Error in saving settings.", [this](bool& result) {
    // The changed flag stays set after a save: from then on every save writes the row.
    if (m_settings && m_settings->IsChanged()) {
      Write([this](Writes& writes) {
        const auto rows = writes.Database().OpenRecordset(kSelectSettings);
        if (rows->Eof()) {
          rows->AddNew();
          rows->Fields(Schema::Settings::kID).Value("1");
        } else {
          rows->Edit();
        }
        rows->Fields(Schema::Settings::kCurrentSeasonID).Value(m_settings->CurrentSeason());
        rows->Update();
        rows->Close();
      });
    }
    result = true;
  });
}

}  // namespace HLDataSrvc
