#include <charconv>
#include <memory>
#include <optional>

#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "cli/commands/Commands.h"
#include "cli/commands/DraftPicking.h"
#include "cli/commands/DraftReport.h"
#include "cli/commands/ExitCode.h"
#include "cli/commands/WatchLeague.h"
#include "cli/output/BoardPage.h"
#include "cli/output/DraftBoard.h"
#include "cli/output/System.h"
#include "league/Utf8.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::size_t kUsualWidth = 80;
constexpr std::size_t kShownNext = 3;

/// Columns to write in: as COLUMNS says, else as many as the terminal has.
std::size_t OutputWidth() {
  const std::string columns = EnvironmentText("COLUMNS");
  std::size_t width = 0;
  const auto [stop, error] = std::from_chars(columns.data(), columns.data() + columns.size(), width);
  if (error == std::errc() && stop == columns.data() + columns.size() && width > 0) return width;
  width = TerminalWidth(stdout);
  return width == 0 ? kUsualWidth : width;
}

/// The picks that follow on the one that is due.
std::vector<std::int32_t> NextEmptyPicks(const Picks& picks, std::int32_t due) {
  std::vector<std::int32_t> next;
  for (auto pick = FirstEmptyPick(picks, due + 1); pick && next.size() < kShownNext;
       pick = FirstEmptyPick(picks, *pick + 1))
    next.push_back(*pick);
  return next;
}

void Clock(Context& context) {
  DraftSession& session = context.Draft();
  DraftReport report(session);
  const DraftOrder& order = report.Order();
  order.RequireSettled();
  const Picks& picks = session.Current();
  const auto due = FirstEmptyPick(picks);
  const std::vector<std::int32_t> next = due ? NextEmptyPicks(picks, *due) : std::vector<std::int32_t>();
  const bool isLocked = session.Season().IsDraftLocked() || session.Season().IsSeasonLocked();
  if (context.json) {
    Json document;
    document["season"] = session.Season().Year();
    document["noOfPicks"] = picks.size();
    document["isLocked"] = isLocked;
    document["onTheClock"] = report.TurnJson(due);
    document["next"] = Json::Array();
    for (const std::int32_t pick : next)
      document["next"].Append(report.TurnJson(pick));
    context.output.Line(JsonText(document));
    return;
  }
  if (!due) {
    context.output.Line(report.ClockText());
    return;
  }
  const Turn turn = order.At(*due);
  const auto name = [&](std::int32_t pick) { return Printable(FullName(*order.ManagerOn(pick))); };
  std::string then;
  for (const std::int32_t pick : next)
    then += (then.empty() ? "" : ", ") + name(pick) + " (" + std::to_string(pick) + ")";
  context.output.Line("on the clock  " + name(*due));
  context.output.Line("pick          " + std::to_string(*due) + " of " + std::to_string(order.NoOfPicks()));
  context.output.Line("round         " + std::to_string(turn.round) + " of " +
                      std::to_string(order.NoOfRounds()) + ", pick " + std::to_string(turn.pickInRound) +
                      " of " + std::to_string(order.NoOfManagers()));
  context.output.Line("next          " + (then.empty() ? "nobody: it is the last pick" : then));
  if (isLocked) context.output.Line("draft         locked");
}

Json BoardJson(DraftSession& session) {
  DraftReport report(session);
  const DraftOrder& order = report.Order();
  Json document;
  document["season"] = session.Season().Year();
  document["noOfRounds"] = order.NoOfRounds();
  document["managers"] = Json::Array();
  for (std::int32_t place = 1; place <= order.NoOfManagers(); ++place) {
    const auto manager = order.ManagerAt(place);
    Json json;
    if (manager) {
      json["id"] = manager->ID();
      json["name"] = FullName(*manager);
      json["rank"] = manager->Rank() < 1 ? Json() : Json(manager->Rank());
    }
    document["managers"].Append(json);
  }
  document["picks"] = Json::Array();
  for (std::int32_t pick = 1; pick <= order.NoOfPicks(); ++pick)
    document["picks"].Append(report.PickJson(pick));
  document["onTheClock"] = report.TurnJson(FirstEmptyPick(session.Current()));
  document["unsavedPicks"] = session.Unsaved().size();
  return document;
}

std::string BoardText(DraftSession& session, bool isJson) {
  if (isJson) return JsonText(BoardJson(session)) + "\n";
  std::string text;
  for (const std::string& line :
       DraftBoard(session.Season(), session.Current(), session.Stored(), session.Misfits())
           .Lines(OutputWidth()))
    text += line + "\n";
  return text;
}

struct BoardOptions {
  std::string page;
  std::optional<std::int32_t> refresh;
  bool watches = false;
};

void Board(Context& context, const BoardOptions& options) {
  if (options.refresh && options.page.empty())
    throw Failure(FailureKind::WrongUsage, "--refresh goes with --html.");
  if (options.watches && context.inShell)
    throw Failure(FailureKind::WrongUsage, "--watch cannot be used in a shell.");
  const auto page =
      options.page.empty() ? nullptr : std::make_shared<BoardFile>(options.page, options.refresh);
  const auto text = [&](DraftSession& session) {
    if (page) page->Update(session);
    return BoardText(session, context.json);
  };
  if (options.watches) {
    WatchLeague(context, [&](League& league) {
      DraftSession session(league);
      return text(session);
    });
  }
  DraftSession& session = context.Draft();
  if (!page) {
    context.output.Write(text(session));
    return;
  }
  page->Update(session);
  if (context.inShell) context.publish = [page, &session] { page->Update(session); };
  context.messages.Note("Wrote " + page->Path() +
                        (context.inShell ? ", and will after every change of the draft." : "."));
}

void AddBoard(Command& draft) {
  Command command = draft.AddCommand("board", "Show the draft: rounds by managers");
  auto options = std::make_shared<BoardOptions>();
  command.AddOption("--html", "FILE", options->page,
                    "write a page instead, for the big screen; in a shell it follows the draft");
  command.AddOption("--refresh", "SECONDS", options->refresh, "the page loads itself again so often");
  command.AddFlag("--watch", options->watches, "show the board again whenever it was changed, until Ctrl-C");
  command.Runs(Board, options);
}

void AddPick(Command& draft) {
  Command command = draft.AddCommand("pick", "Pick a player or team for the manager on the clock");
  auto options = std::make_shared<DraftPickOptions>();
  command.AddArgument("WHO", options->who, "a name, or the beginning of one; or an id: P17, T5").Required();
  command.AddOption("--pick", "N", options->pick, "fill this pick, or replace it");
  command.AddOption("--team", "ABBR", options->words.team, "of namesakes the one in this team");
  command.AddOption("--position", "ABBR", options->words.position, "of namesakes the one at this position");
  command.AddOption("--manager", "NAME", options->manager,
                    "who picks, if it is not the one whose turn it is");
  command.AddFlag("--retired", options->words.retired, "look among retired players too");
  command.Runs(DraftPick, options);
}

void AddUndo(Command& draft) {
  Command command = draft.AddCommand("undo", "Take the last pick back, or empty pick N");
  auto number = std::make_shared<std::optional<std::int32_t>>();
  command.AddArgument("N", *number, "the pick to empty");
  command.Runs([&context = draft.GetContext(), number] { DraftUndo(context, *number); });
}

struct ClearOptions {
  std::vector<std::int32_t> numbers;
  bool isSure = false;
};

void AddClear(Command& draft) {
  Command command = draft.AddCommand("clear", "Empty picks, or the whole draft");
  auto options = std::make_shared<ClearOptions>();
  command.AddArgument("N", options->numbers, "the picks to empty; without any, all of them");
  command.AddFlag("--yes,-y,--force", options->isSure, "do not ask before the whole draft is emptied");
  command.Runs(
      [&context = draft.GetContext(), options] { DraftClear(context, options->numbers, options->isSure); });
}

}  // namespace

void AddDraftCommand(Command& app) {
  Command draft = app.AddCommand("draft", "Play the draft of the current season");
  AddBoard(draft);
  draft.AddCommand("clock", "Show whose turn it is").Runs(Clock);
  AddPick(draft);
  AddUndo(draft);
  AddClear(draft);
  draft.AddCommand("save", "Save the picks that a shell has made").Runs(DraftSave);
  draft.AddCommand("revert", "Drop the picks that a shell has made since they were saved").Runs(DraftRevert);
}

}  // namespace cli
