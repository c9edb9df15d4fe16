#include <algorithm>
#include <optional>

#include "HLLeague/Backups.h"
#include "cli/commands/Commands.h"
#include "cli/commands/DatabaseOptions.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/MendingCommands.h"
#include "cli/output/Json.h"
#include "jet/Check.h"
#include "jet/Error.h"
#include "league/Numbers.h"
#include "storage/LeagueCheck.h"

namespace cli {

using namespace HLLeague;

namespace {

using HLDataSrvc::LeagueFinding;
using LeagueFindings = std::vector<LeagueFinding>;

/// `check [FILE]`: the file may be named without --file.
class CheckOptions : public DatabaseOptions {
 public:
  void AddTo(Command& command) {
    command.AddArgument("FILE", m_file, "file to check; without one, the league's");
    DatabaseOptions::AddTo(command);
    command.AddFlag("--repair", m_repairs,
                    "after a backup, change the rows of the league that have one right answer");
  }

  bool Repairs() const { return m_repairs; }
  /// Raises Failure if --repair is given together with a file or a password.
  void RequireLeagueToRepair() const {
    if (m_file.empty() && !GivesPassword()) return;
    throw Failure(FailureKind::WrongUsage, "--repair works on the league in the folder, not on other files.",
                  "Choose it with --folder and --kind.");
  }

 private:
  bool m_repairs = false;
};

std::string CountOfFindings(std::size_t count) {
  return CountOf(static_cast<std::int64_t>(count), "finding");
}

Failure DamagedFailure(const std::string& path, std::size_t findings) {
  return Failure(FailureKind::Damaged, path + " is damaged: " + CountOfFindings(findings) + ".");
}

Json FindingsJson(const std::optional<LeagueFindings>& findings) {
  if (!findings) return {};
  Json list = Json::Array();
  for (const LeagueFinding& finding : *findings) {
    list.Append({{"kind", HLDataSrvc::NameOf(finding.misfit)},
                 {"text", finding.text},
                 {"breaksRules", !HLDataSrvc::IsRemark(finding.misfit)},
                 {"repairable", finding.repair.has_value()},
                 {"commands", MendingCommands(finding)}});
  }
  return list;
}

void PrintFinding(Output& output, const LeagueFinding& finding) {
  output.Line(finding.text);
  if (finding.repair) return output.Line("  'check --repair' mends it.");
  std::string commands;
  for (const std::string& command : MendingCommands(finding))
    commands += (commands.empty() ? "  To mend it: '" : ", then '") + command + "'";
  if (!commands.empty()) output.Line(commands + ".");
}

/// Fails if there are findings of the league's rules, besides remarks.
void RequireNone(const std::string& path, const LeagueFindings& findings) {
  const auto count = std::count_if(findings.begin(), findings.end(), [](const LeagueFinding& finding) {
    return !HLDataSrvc::IsRemark(finding.misfit);
  });
  if (count == 0) return;
  throw Failure(FailureKind::Refused, path + " breaks the rules of the league: " +
                                          CountOfFindings(static_cast<std::size_t>(count)) + ".");
}

/// What breaks the league's rules; none for a file that is not a league, or if its rows cannot be read.
std::optional<LeagueFindings> FindingsOf(Context& context, jet::Database& database, bool isSound) {
  if (!HLDataSrvc::IsLeague(database)) return {};
  try {
    return HLDataSrvc::CheckLeague(database);
  } catch (const jet::Error& error) {
    if (isSound) throw;
    context.messages.Note(std::string("The rules of the league were not checked: ") + error.what());
    return {};
  }
}

void PrintJson(Output& output, const std::string& path, const jet::CheckReport& report,
               const std::optional<LeagueFindings>& league) {
  Json document;
  document["file"] = path;
  document["sound"] = report.findings.empty();
  document["pages"] = report.pages;
  document["tables"] = report.tables;
  document["indexes"] = report.indexes;
  document["rows"] = report.rows;
  document["findings"] = report.findings;
  document["leagueFindings"] = FindingsJson(league);
  output.Line(JsonText(document));
}

void PrintText(Output& output, const std::string& path, const jet::CheckReport& report,
               const std::optional<LeagueFindings>& league) {
  for (const std::string& finding : report.findings)
    output.Line(finding);
  if (report.findings.empty()) {
    output.Line(path + " is sound: " + std::to_string(report.pages) + " pages, " +
                std::to_string(report.tables) + " tables, " + std::to_string(report.indexes) + " indexes, " +
                std::to_string(report.rows) + " rows.");
  }
  if (!league) return;
  for (const LeagueFinding& finding : *league)
    PrintFinding(output, finding);
}

void Repair(Context& context, const CheckOptions& options) {
  options.RequireLeagueToRepair();
  const std::string path = context.LeaguePath();
  const std::string backup = NewBackupPath(context.folder);
  const HLDataSrvc::RepairedLeague done = HLDataSrvc::RepairLeagueFile(path, backup);
  if (context.json) {
    Json document;
    document["file"] = path;
    document["sound"] = done.damage.empty();
    document["findings"] = done.damage;
    document["backup"] = done.repairs.empty() ? Json() : Json(backup);
    document["repairs"] = done.repairs;
    document["leagueFindings"] = done.damage.empty() ? FindingsJson(done.left) : Json();
    context.output.Line(JsonText(document));
  } else {
    for (const std::string& finding : done.damage)
      context.output.Line(finding);
    if (!done.repairs.empty()) context.output.Line("Copied " + path + " to " + backup + ".");
    for (const std::string& repair : done.repairs)
      context.output.Line(repair);
    if (done.damage.empty() && done.repairs.empty()) context.messages.Note("There was nothing to repair.");
    for (const LeagueFinding& finding : done.left)
      PrintFinding(context.output, finding);
  }
  if (!done.damage.empty()) throw DamagedFailure(path, done.damage.size());
  RequireNone(path, done.left);
}

void Check(Context& context, const CheckOptions& options) {
  if (options.Repairs()) return Repair(context, options);
  const std::string path = options.Path(context);
  const auto database = options.Open(context);
  const jet::CheckReport report = database->Check();
  const auto league = FindingsOf(context, *database, report.findings.empty());
  if (context.json) {
    PrintJson(context.output, path, report, league);
  } else {
    PrintText(context.output, path, report, league);
  }
  if (!report.findings.empty()) throw DamagedFailure(path, report.findings.size());
  if (league) RequireNone(path, *league);
}

}  // namespace

void AddCheckCommand(Command& app) {
  Command command = app.AddCommand(
      "check", "Check the whole of a file: pages, maps, indexes, relationships; and the rules of a league");
  auto options = std::make_shared<CheckOptions>();
  options->AddTo(command);
  command.Runs(Check, options);
}

}  // namespace cli
