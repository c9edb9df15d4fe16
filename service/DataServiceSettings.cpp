// The settings row.

#include <cstdint>

#include "jet/Value.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "records/SettingInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "service/Writes.h"
#include "storage/Schema.h"

namespace HLDataSrvc {
namespace {

constexpr char kSelectSettings[] = "select * from [settings] where [ID] = 1";

}  // namespace

std::shared_ptr<HLIData::ISettingInfo> DataService::GetSettings() {
  if (m_settings) return m_settings;
  using Result = std::shared_ptr<HLIData::ISettingInfo>;
  return Trap<Result>("Error in loading settings.", [this](Result& result) {
    // Held before it is filled: after a failure the service keeps this object and does not read the row
    // again.
    m_settings = std::make_shared<SettingInfo>();
    m_settings->AddObserver(*this);
    const auto rows = Database().OpenRecordset(kSelectSettings);
    if (!rows->Eof()) {
      // Strict: a Null identifier is an error here, and not 0.
      m_settings->CurrentSeason(Rows::WholeInt32(*rows, Schema::Settings::kCurrentSeasonID));
    }
    rows->Close();
    result = m_settings;
  });
}

bool DataService::SaveSettings() {
  return Trap<bool>("Error in saving settings.", [this](bool& result) {
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
