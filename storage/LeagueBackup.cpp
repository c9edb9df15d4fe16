#include "storage/LeagueBackup.h"

#include <memory>
#include <utility>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "storage/HLServiceUtils.h"
#include "storage/HeldLeague.h"
#include "storage/TemporaryDatabase.h"

namespace HLDataSrvc {
namespace {

using HLServiceUtils::Engine;
using HLServiceUtils::OpenExclusively;

/// Checks the whole of a file. Raises DamagedFile with the first finding.
jet::CheckReport RequireSound(const jet::Database& database) {
  jet::CheckReport report = database.Check();
  if (!report.findings.empty()) {
    throw jet::Error(jet::ErrorNumber::DamagedFile,
                     "The file " + database.Name() + " is damaged: " + report.findings.front());
  }
  return report;
}

void CopyTo(jet::Database& database, const std::string& backup) {
  TemporaryDatabase copy(backup);
  copy.Finish(Engine().CopyDatabase(database, copy.Path(), database.Name()));
  copy.PutInPlace();
}

void RequireFree(const std::string& path) {
  if (Engine().HasFile(path))
    throw jet::Error(jet::ErrorNumber::ObjectExists, "File " + path + " is there already.");
}

}  // namespace

void BackUpLeague(const std::string& path, const std::string& backup) {
  RequireFree(backup);  // before the file is opened, whose error would hide it
  BackUpLeague(*OpenExclusively(path), backup);
}

void BackUpLeague(jet::Database& league, const std::string& backup) {
  RequireFree(backup);
  CopyTo(league, backup);
}

Replaced RestoreLeague(const std::string& backup, const std::string& path, const std::string& kept,
                       bool acceptDamage) {
  RequireFree(kept);
  const auto source = Engine().OpenDatabase(backup, /*exclusive=*/false, /*readOnly=*/true,
                                            HLServiceUtils::GetConnectString());
  if (!acceptDamage) RequireSound(*source);
  TemporaryDatabase file(path);
  if (!Engine().HasFile(path)) {
    file.Finish(Engine().CopyDatabase(*source, file.Path(), backup));
    const std::string log = jet::LogNameFor(path);
    const bool hasLog = Engine().HasFile(log);
    if (hasLog) Engine().RenameDatabase(log, Engine().Hold(log), jet::LogNameFor(kept));
    file.PutInPlace();
    return hasLog ? Replaced::LogOnly : Replaced::Nothing;
  }
  HeldLeague league = HoldLeague(path);
  file.Finish(Engine().CopyDatabase(*source, file.Path(), path));
  if (league.database) {
    CopyTo(*league.database, kept);
    file.PutInPlaceOf(*league.database);
    return Replaced::Whole;
  }
  Engine().RenameDatabase(path, std::move(league.file), kept);
  try {
    file.PutInPlace();
  } catch (const jet::Error& error) {
    if (!error.IsUncertain()) Engine().RenameDatabase(kept, nullptr, path);
    throw;
  }
  return Replaced::Unreadable;
}

Compacted CompactLeague(const std::string& path, const std::string& kept) {
  const auto league = OpenExclusively(path);
  const jet::CheckReport before = league->Check();
  TemporaryDatabase file(path);
  const auto compacted = Engine().CompactDatabase(*league, file.Path());
  const std::uint32_t pagesAfter = RequireSound(*compacted).pages;
  file.Finish(*compacted);
  if (!before.findings.empty()) {
    RequireFree(kept);
    CopyTo(*league, kept);
  }
  file.PutInPlaceOf(*league);
  return {before.pages, pagesAfter, before.findings};
}

}  // namespace HLDataSrvc
