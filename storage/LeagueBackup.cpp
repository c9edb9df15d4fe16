#include "storage/LeagueBackup.h"

#include <memory>

#include "jet/Check.h"
#include "jet/Error.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "storage/FileInMaking.h"
#include "storage/HLServiceUtils.h"

namespace HLDataSrvc {
namespace {

using HLServiceUtils::Engine;

std::shared_ptr<jet::Database> OpenExclusively(const std::string& path) {
  return Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false,
                               HLServiceUtils::GetConnectString());
}

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
  FileInMaking copy(backup);
  Engine().CopyDatabase(database, copy.Path());
  copy.PutInPlace();
}

void RequireFree(const std::string& path) {
  if (Engine().HasFile(path))
    throw jet::Error(jet::ErrorNumber::ObjectExists, "File " + path + " is there already.");
}

/// Whether a file does not open because of what is in it. Other errors may go away.
bool IsUnreadable(jet::ErrorNumber number) {
  using enum jet::ErrorNumber;
  return number == NotADatabase || number == DamagedFile || number == PasswordRejected ||
         number == LogDoesNotBelong || number == FileTooLarge;
}

/// The league file, open; none when it cannot be read.
std::shared_ptr<jet::Database> OpenIfReadable(const std::string& path) {
  try {
    return OpenExclusively(path);
  } catch (const jet::Error& error) {
    if (!IsUnreadable(error.Number())) throw;
    return nullptr;
  }
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
  FileInMaking file(path);
  Engine().CopyDatabase(*source, file.Path());
  if (!Engine().HasFile(path)) {
    const bool hasLog = Engine().HasFile(jet::LogNameFor(path));
    if (hasLog) Engine().RenameDatabase(jet::LogNameFor(path), jet::LogNameFor(kept));
    file.PutInPlace();
    return hasLog ? Replaced::LogOnly : Replaced::Nothing;
  }
  if (const auto league = OpenIfReadable(path)) {
    CopyTo(*league, kept);
    file.PutInPlaceOf(*league);
    return Replaced::Whole;
  }
  Engine().RenameDatabase(path, kept);
  file.PutInPlace();
  return Replaced::Unreadable;
}

Compacted CompactLeague(const std::string& path, const std::string& kept) {
  const auto league = OpenExclusively(path);
  const jet::CheckReport before = league->Check();
  FileInMaking file(path);
  Engine().CompactDatabase(*league, file.Path());
  const std::uint32_t pagesAfter = RequireSound(*OpenExclusively(file.Path())).pages;
  if (!before.findings.empty()) {
    RequireFree(kept);
    CopyTo(*league, kept);
  }
  file.PutInPlaceOf(*league);
  return {before.pages, pagesAfter, before.findings};
}

}  // namespace HLDataSrvc
