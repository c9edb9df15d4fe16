#include <memory>

#include "HLLeague/Backups.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/Json.h"
#include "jet/dao/DBEngine.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"
#include "storage/LeagueBackup.h"

namespace cli {

using namespace HLLeague;

namespace {

struct BackupOptions {
  bool lists = false;
};

void ListBackups(Context& context) {
  Json document = Json::Array();
  TextTable table({{"backup"}, {"KiB", TextTable::Align::Right}});
  const auto backups = BackupsIn(context.folder);
  for (const Backup& backup : backups) {
    document.Append({{"file", backup.path}, {"bytes", backup.bytes}});
    table.Add({Printable(backup.name), std::to_string(backup.bytes / 1024)});
  }
  if (context.json) {
    context.output.Line(JsonText(document));
  } else if (backups.empty()) {
    context.messages.Note("There is no backup in " + context.folder + ".");
  } else {
    context.output.Lines(table.Lines());
  }
}

void MakeBackup(Context& context, const BackupOptions& options) {
  if (options.lists) return ListBackups(context);
  const std::string league = context.LeaguePath();
  const std::string backup = NewBackupPath(context.folder);
  HLDataSrvc::BackUpLeague(league, backup);
  if (context.json) {
    context.output.Line(JsonText({{"file", league}, {"backup", backup}}));
  } else {
    context.output.Line("Copied " + league + " to " + backup + ".");
  }
}

struct RestoreOptions {
  std::string backup;
  bool latest = false;
  bool isSure = false;
  bool acceptsDamage = false;
};

/// The backup that is meant: a file, or a name in the league's folder.
std::string BackupMeant(const Context& context, const RestoreOptions& options) {
  const auto backups = BackupsIn(context.folder);
  if (options.latest) {
    if (backups.empty()) throw Failure(FailureKind::Refused, "There is no backup in " + context.folder + ".");
    return backups.front().path;
  }
  if (options.backup.empty())
    throw Failure(FailureKind::WrongUsage, "Say which backup, or --latest.", "'backup --list' lists them.");
  for (const Backup& backup : backups) {
    if (backup.name == options.backup) return backup.path;
  }
  return options.backup;
}

const char* TextOf(HLDataSrvc::Replaced replaced) {
  switch (replaced) {
    case HLDataSrvc::Replaced::Whole:
      return "kept";
    case HLDataSrvc::Replaced::Unreadable:
      return "put aside unread";
    case HLDataSrvc::Replaced::LogOnly:
      return "log put aside";
    case HLDataSrvc::Replaced::Nothing:
      break;
  }
  return "none";
}

void Restore(Context& context, const RestoreOptions& options) {
  const std::string league = context.LeaguePath();
  const std::string backup = BackupMeant(context, options);
  if (!options.isSure && !context.Confirm("Put " + backup + " in the place of " + league + "?")) {
    throw Failure(FailureKind::Refused, "Nothing was restored.",
                  context.canAsk ? "" : "With --yes " + backup + " takes the place of the league.");
  }
  const std::string kept = NewBackupPath(context.folder);
  const auto replaced = HLDataSrvc::RestoreLeague(backup, league, kept, options.acceptsDamage);
  const bool wasThere =
      replaced == HLDataSrvc::Replaced::Whole || replaced == HLDataSrvc::Replaced::Unreadable;
  if (context.json) {
    Json document;
    document["file"] = league;
    document["restored"] = backup;
    document["before"] = TextOf(replaced);
    document["kept"] = wasThere ? Json(kept) : Json();
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line("Restored " + league + " from " + backup + ".");
  if (wasThere) context.output.Line("The league as it was is " + kept + ".");
  if (replaced == HLDataSrvc::Replaced::Unreadable)
    context.messages.Note("It could not be read as a league file, and was put aside as it was.");
  if (replaced == HLDataSrvc::Replaced::LogOnly) {
    context.messages.Note("The league's file was gone; changes that were saved and not in it yet are in " +
                          jet::LogNameFor(kept) + ".");
  }
}

void Compact(Context& context) {
  const std::string league = context.LeaguePath();
  const std::string kept = NewBackupPath(context.folder);
  const HLDataSrvc::Compacted done = HLDataSrvc::CompactLeague(league, kept);
  const bool isMended = !done.findings.empty();
  if (context.json) {
    Json document;
    document["file"] = league;
    document["pagesBefore"] = done.pagesBefore;
    document["pages"] = done.pagesAfter;
    document["findings"] = done.findings;
    document["kept"] = isMended ? Json(kept) : Json();
    context.output.Line(JsonText(document));
    return;
  }
  context.output.Line("Compacted " + league + ": " + std::to_string(done.pagesAfter) + " pages instead of " +
                      std::to_string(done.pagesBefore) + ".");
  if (!isMended) return;
  context.output.Line("The file as it was is " + kept + ": it had " +
                      CountOf(static_cast<std::int64_t>(done.findings.size()), "finding") + ".");
  for (const std::string& finding : done.findings)
    context.messages.Note(finding);
}

}  // namespace

void AddBackupCommand(Command& app) {
  Command command = app.AddCommand("backup", "Copy the league's file to a backup named for date and time");
  const auto options = std::make_shared<BackupOptions>();
  command.AddFlag("--list", options->lists, "list the backups that there are, newest first");
  command.Runs(MakeBackup, options);
}

void AddRestoreCommand(Command& app) {
  Command command =
      app.AddCommand("restore", "Put a backup in the place of the league's file, and keep that");
  const auto options = std::make_shared<RestoreOptions>();
  const Option file =
      command.AddArgument("BACKUP", options->backup, "a backup, as 'backup --list' shows it, or any file");
  command.AddFlag("--latest", options->latest, "the newest backup").Excludes(file);
  command.AddFlag("--yes,-y", options->isSure, "do not ask");
  command.AddFlag("--accept-damage", options->acceptsDamage, "also a backup in which 'check' finds damage");
  command.Runs(Restore, options);
}

void AddCompactCommand(Command& app) {
  app.AddCommand("compact", "Make the league's file anew, without free pages").Runs(Compact);
}

}  // namespace cli
