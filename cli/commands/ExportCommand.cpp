#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <type_traits>
#include <variant>
#include <vector>

#include "HLLeague/DraftSession.h"
#include "HLLeague/ExportLists.h"
#include "HLLeague/League.h"
#include "HLLeague/Seasons.h"
#include "cli/commands/Commands.h"
#include "cli/commands/ExitCode.h"
#include "cli/output/BoardPage.h"
#include "cli/output/HtmlPage.h"
#include "cli/output/OutputFile.h"
#include "cli/output/RowWriter.h"
#include "cli/output/ValueText.h"
#include "league/Numbers.h"
#include "platform/Paths.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kWideFrom = 7;  ///< columns of a list whose rows become cards on a phone

struct ExportOptions {
  std::string what;
  std::string format = "csv";
  std::string file;
  std::optional<std::int32_t> year;
  bool force = false;
  bool isSafe = false;
};

bool IsNumber(const ExportCell& cell) {
  return std::holds_alternative<std::int32_t>(cell) || std::holds_alternative<double>(cell);
}

jet::Value ValueOf(const ExportCell& cell) {
  return std::visit(
      [](const auto& content) -> jet::Value {
        if constexpr (std::is_same_v<std::decay_t<decltype(content)>, std::monostate>) {
          return {};
        } else {
          return content;
        }
      },
      cell);
}

std::string CellHtml(const ExportCell& cell, const std::string& column, bool isNumber,
                     const PositionBadges& badges) {
  std::string html =
      std::string("<td") + (isNumber ? " class=\"n\"" : "") + " data-name=\"" + HtmlText(column) + "\">";
  if (std::holds_alternative<std::monostate>(cell)) {
    html += "<span class=\"none\">&ndash;</span>";
  } else if (const bool* flag = std::get_if<bool>(&cell)) {
    html += *flag ? "yes" : "<span class=\"none\">no</span>";
  } else {
    const std::string text = ValueText(ValueOf(cell));
    html += column == "position" ? badges.Html(text) : HtmlText(text);
  }
  return html + "</td>";
}

std::string ListHtml(League& league, const ExportList& list) {
  const PositionBadges badges(league);
  HtmlPage page;
  page.title = list.title;
  page.note = CountOf(static_cast<std::int64_t>(list.rows.size()), "row");
  page.body = std::string("<div class=\"box") + (list.columns.size() < kWideFrom ? "" : " cards") +
              "\"><table>\n<thead><tr>";
  std::vector<bool> areNumbers;  // the columns: one without any value is none
  for (std::size_t i = 0; i < list.columns.size(); ++i) {
    areNumbers.push_back(
        std::any_of(list.rows.begin(), list.rows.end(), [i](const auto& row) { return IsNumber(row[i]); }));
    page.body += std::string("<th scope=\"col\"") + (areNumbers[i] ? " class=\"n\">" : ">") +
                 HtmlText(list.columns[i]) + "</th>";
  }
  page.body += "</tr></thead>\n<tbody>\n";
  for (const auto& row : list.rows) {
    page.body += "<tr>";
    for (std::size_t i = 0; i < row.size(); ++i)
      page.body += CellHtml(row[i], list.columns[i], areNumbers[i], badges);
    page.body += "</tr>\n";
  }
  page.body += "</tbody>\n</table></div>\n";
  return page.Text();
}

std::string BoardHtml(DraftSession& draft, const std::optional<std::int32_t>& year) {
  League& league = draft.GetLeague();
  const auto season = SeasonToShow(league, year);
  if (IsCurrent(league, *season))
    return BoardPage(league, draft.Season(), draft.Current(), draft.Stored(), std::nullopt);
  const Picks picks = PicksToShow(draft, *season);
  return BoardPage(league, *season, picks, picks, std::nullopt);
}

/// A text that no spreadsheet takes for a formula.
ExportCell Guarded(const ExportCell& cell) {
  const std::string* text = std::get_if<std::string>(&cell);
  if (text == nullptr || text->find_first_of("=+-@\t\r") != 0) return cell;
  return "'" + *text;
}

std::string RowsText(const ExportList& list, RowFormat format, bool isSafe) {
  std::string text;
  const auto writer = MakeRowWriter(format, [&text](std::string_view piece) { text += piece; });
  writer->Begin(list.columns);
  for (const auto& row : list.rows) {
    for (const ExportCell& cell : row) {
      const bool* flag = std::get_if<bool>(&cell);
      if (flag != nullptr && format == RowFormat::Csv) {
        writer->Cell(std::string_view(*flag ? "yes" : "no"));
      } else {
        writer->Cell(ValueOf(isSafe ? Guarded(cell) : cell));
      }
    }
    writer->EndRow();
  }
  writer->End();
  return text;
}

/// Raises Failure when the file must not be written over.
void RequireMayWrite(const League& league, const ExportOptions& options) {
  if (!IsThere(options.file)) return;
  if (!options.force) {
    throw Failure(FailureKind::Refused, "File " + options.file + " is there already.",
                  "With --force it is replaced, and what is in it is lost.");
  }
  std::error_code error;
  if (std::filesystem::equivalent(HLDataSrvc::ToSystemPath(options.file),
                                  HLDataSrvc::ToSystemPath(league.Path()), error))
    throw Failure(FailureKind::Refused, "File " + options.file + " is the league's own.");
}

void Export(Context& context, const ExportOptions& options) {
  if (options.year && !IsOfSeason(options.what))
    throw Failure(FailureKind::WrongUsage,
                  "--season goes with the lists of a season; " + options.what + " are those of the league.");
  if (options.force && options.file.empty())
    throw Failure(FailureKind::WrongUsage, "--force goes with --output.");
  if (options.isSafe && (context.json || options.format != "csv"))
    throw Failure(FailureKind::WrongUsage, "--safe goes with CSV.");
  League& league = context.OpenLeague();
  if (!options.file.empty()) RequireMayWrite(league, options);
  const std::string format = context.json ? "json" : options.format;
  std::string text;
  std::string missing;
  if (format == "html" && options.what == "board") {
    text = BoardHtml(context.Draft(), options.year);
  } else {
    const ExportList list = MakeExportList(context.Draft(), options.what, options.year);
    missing = list.missing;
    text = format == "html"
               ? ListHtml(league, list)
               : RowsText(list, format == "json" ? RowFormat::JsonArray : RowFormat::Csv, options.isSafe);
  }
  if (options.file.empty()) {
    context.output.Write(text);
  } else {
    WriteFileAtomically(options.file, text);
    context.messages.Note("Wrote " + options.file + ".");
  }
  RequireNoneMissing(missing);
}

}  // namespace

void AddExportCommand(Command& app) {
  Command command = app.AddCommand("export", "Write a list or the board of the draft as CSV, JSON or HTML");
  auto options = std::make_shared<ExportOptions>();
  command.AddArgument("WHAT", options->what, "the list to write").Required().OneOf(ExportListNames());
  command.AddOption("--format", "FORMAT", options->format, "how it is written")
      .OneOf({"csv", "json", "html"})
      .ShowsDefault();
  command.AddOption("--output", "FILE", options->file, "file to write; without one, standard output");
  command.AddFlag("--force", options->force, "replace a file that is there already");
  command.AddFlag("--safe", options->isSafe,
                  "CSV for spreadsheets: an apostrophe before texts that they would take for formulas");
  command.AddOption("--season", "YEAR", options->year,
                    "the list of this year's season; without, of the current one");
  command.Runs(Export, options);
}

}  // namespace cli
