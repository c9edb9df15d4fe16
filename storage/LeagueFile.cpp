#include "storage/LeagueFile.h"

#include <cstdint>
#include <memory>
#include <string>
#include <system_error>

#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "platform/Paths.h"
#include "storage/FileInMaking.h"
#include "storage/HLServiceUtils.h"
#include "storage/Schema.h"

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

// Raises the engine's error when someone has the file open. Other reasons for which it does not open are no
// obstacle to replacing it.
void RefuseFileInUse(const std::string& path) {
  try {
    HLServiceUtils::Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false,
                                          HLServiceUtils::GetConnectString());
  } catch (const jet::Error& error) {
    using enum jet::ErrorNumber;
    if (error.Number() == FileInUse || error.Number() == FileHeldExclusively) throw;
  }
}

}  // namespace

void CreateLeagueFile(const std::string& path, const LeagueFileOptions& options) {
  std::error_code unknown;  // what cannot be looked at cannot be made either: the engine says why
  if (std::filesystem::exists(ToSystemPath(path), unknown)) {
    if (!options.overwrite)
      throw jet::Error(jet::ErrorNumber::ObjectExists, "File " + path + " is there already.");
    RefuseFileInUse(path);
  }
  FileInMaking file(path);
  const auto database = HLServiceUtils::Engine().CreateDatabase(
      file.Path(), {.password = HLServiceUtils::kDatabasePassword, .durability = jet::Durability::Off});
  Schema::CreateTables(*database);
  AddSettingsRow(*database);
  if (options.fill) options.fill(*database);
  database->Close();
  file.PutInPlace();
}

}  // namespace HLDataSrvc
