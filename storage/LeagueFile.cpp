#include "storage/LeagueFile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "storage/HLServiceUtils.h"
#include "storage/HeldLeague.h"
#include "storage/Schema.h"
#include "storage/TemporaryDatabase.h"

namespace HLDataSrvc {
namespace {

void AddSettingsRow(jet::Database& database) {
  const auto settings =
      database.OpenRecordset(std::string("select * from [") + Schema::Settings::kTable + "]");
  settings->AddNew();
  settings->Fields(Schema::Settings::kID).Value(std::int32_t{1});
  settings->Fields(Schema::Settings::kCurrentSeasonID).Value(std::int32_t{0});
  settings->Update();
  settings->Close();
}

}  // namespace

void CreateLeagueFile(const std::string& path, const LeagueFileOptions& options) {
  HeldLeague replaced;
  const bool replaces = HLServiceUtils::Engine().HasFile(path);
  if (replaces && !options.overwrite)
    throw jet::Error(jet::ErrorNumber::ObjectExists, "File " + path + " is there already.");
  if (replaces) replaced = HoldLeague(path);
  TemporaryDatabase file(path);
  const auto database =
      HLServiceUtils::Engine().CreateDatabase(file.Path(), {.password = HLServiceUtils::kDatabasePassword,
                                                            .durability = jet::Durability::Off,
                                                            .like = replaces ? path : std::string()});
  Schema::CreateTables(*database);
  AddSettingsRow(*database);
  if (options.fill) options.fill(*database);
  file.Finish(*database);
  if (replaced.database) {
    file.PutInPlaceOf(*replaced.database);
  } else if (replaced.file) {
    file.PutInPlaceOf(std::move(replaced.file));
  } else {
    file.PutInPlace();
  }
}

}  // namespace HLDataSrvc
