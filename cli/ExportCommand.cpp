#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "cli/BoardPage.h"
#include "cli/Commands.h"
#include "cli/DraftSession.h"
#include "cli/ExitCode.h"
#include "cli/ExportLists.h"
#include "cli/HtmlPage.h"
#include "cli/League.h"
#include "cli/Numbers.h"
#include "cli/RowWriter.h"
#include "cli/Seasons.h"
#include "cli/ValueText.h"
#include "cli/WholeFile.h"
#include "platform/Paths.h"

namespace cli {
namespace {

constexpr std::size_t kWideFrom = 7;  ///< columns of a list whose rows become cards on a phone

struct ExportOptions {
  std::string what;
  std::string format = "csv";
  std::string file;
  std::optional<std::int32_t> year;
  bool force = false;
};

bool IsNumber(const jet::Value& value) {
  return value.As<std::int32_t>() != nullptr || value.As<double>() != nullptr;
}

std::string CellHtml(const jet::Value& value, const std::string& column, bool isNumber,
                     const PositionBadges& badges) {
  std::string html =
      std::string("<td") + (isNumber ? " class=\"n\"" : "") + " data-name=\"" + HtmlText(column) + "\">";
  if (value.IsNull()) {
    html += "<span class=\"none\">&ndash;</span>";
  } else if (const bool* flag = value.As<bool>()) {
    html += *flag ? "yes" : "<span class=\"none\">no</span>";
  } else {
    const std::string text = ValueText(value);
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
  League& league = draft.TheLeague();
  const auto season = SeasonToShow(league, year);
  if (IsCurrent(league, *season))
    return BoardPage(league, draft.Season(), draft.Current(), draft.Stored(), std::nullopt);
  const Picks picks = PicksToShow(draft, *season);
  return BoardPage(league, *season, picks, picks, std::nullopt);
}

std::string RowsText(const ExportList& list, RowFormat format) {
  std::string text;
  const auto writer = MakeRowWriter(format, [&text](std::string_view piece) { text += piece; });
  writer->Begin(list.columns);
  for (std::vector<jet::Value> row : list.rows) {
    for (jet::Value& value : row) {
      const bool* flag = value.As<bool>();
      if (flag != nullptr && format == RowFormat::Csv) value = std::string(*flag ? "yes" : "no");
    }
    writer->Row(row);
  }
  writer->End();
  return text;
}

/// Raises Failure when the file must not be written over.
void RequireMayWrite(const League& league, const ExportOptions& options) {
  if (!IsThere(options.file)) return;
  if (!options.force) {
    throw Failure(ExitCode::Refused, "File " + options.file + " is there already.",
                  "With --force it is replaced, and what is in it is lost.");
  }
  std::error_code error;
  if (std::filesystem::equivalent(HLDataSrvc::ToSystemPath(options.file),
                                  HLDataSrvc::ToSystemPath(league.Path()), error))
    throw Failure(ExitCode::Refused, "File " + options.file + " is the league's own.");
}

void Export(Context& context, const ExportOptions& options) {
  if (options.year && !IsOfSeason(options.what))
    throw Failure(ExitCode::WrongUsage,
                  "--season goes with the lists of a season; " + options.what + " are those of the league.");
  if (options.force && options.file.empty())
    throw Failure(ExitCode::WrongUsage, "--force goes with --output.");
  League& league = context.TheLeague();
  if (!options.file.empty()) RequireMayWrite(league, options);
  const std::string format = context.json ? "json" : options.format;
  std::string text;
  std::string missing;
  if (format == "html" && options.what == "board") {
    text = BoardHtml(context.Draft(), options.year);
  } else {
    const ExportList list = MakeExportList(context.Draft(), options.what, options.year);
    missing = list.missing;
    text = format == "html" ? ListHtml(league, list)
                            : RowsText(list, format == "json" ? RowFormat::JsonArray : RowFormat::Csv);
  }
  if (options.file.empty()) {
    context.output.Write(text);
  } else {
    WriteWholeFile(options.file, text);
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
  command.AddOption("--season", "YEAR", options->year,
                    "the list of this year's season; without, of the current one");
  command.Runs(Export, options);
}

}  // namespace cli
