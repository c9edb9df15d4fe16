#include "cli/commands/DraftReport.h"

#include "HLLeague/Find.h"
#include "HLLeague/Pickables.h"
#include "HLLeague/Seasons.h"
#include "cli/output/RecordJson.h"
#include "league/Utf8.h"
#include "records/RecordKey.h"

namespace cli {

using namespace HLLeague;

DraftReport::DraftReport(DraftSession& session)
    : m_session(session), m_season(session.Season()), m_order(m_season) {}

std::string DraftReport::TurnText(std::int32_t number) const {
  return "pick " + std::to_string(number) + ", round " + std::to_string(m_order.At(number).round);
}

std::string DraftReport::HeldText(const Pick& pick) const {
  if (pick.what) return PickableText(FactsOf(*pick.what));
  return pick.type == HLIData::PickType::None ? "nobody" : "somebody unknown";
}

std::string DraftReport::ManagerText(std::int32_t managerID) const {
  const std::string id = std::to_string(managerID);
  const auto manager = ManagersOf(m_season).Find(HLDataSrvc::RecordKey(managerID));
  return manager ? Printable(FullName(*manager)) : id;
}

std::string DraftReport::ClockText() {
  const Picks& picks = m_session.Current();
  const auto due = FirstEmptyPick(picks);
  if (!due) return "The draft is complete: all " + CountOfPicks(picks.size()) + " are made.";
  const std::string why = m_order.WhyUnsettled();
  if (!why.empty()) return why;
  return "On the clock: " + Printable(FullName(*m_order.ManagerOn(*due))) + ", " + TurnText(*due) + ".";
}

Json DraftReport::ManagerJson(std::int32_t managerID) const {
  Json json;
  json["id"] = managerID;
  const auto manager = ManagersOf(m_season).Find(HLDataSrvc::RecordKey(managerID));
  json["name"] = manager ? Json(FullName(*manager)) : Json();
  return json;
}

Json DraftReport::TurnJson(const std::optional<std::int32_t>& number) const {
  if (!number || !m_order.WhyUnsettled().empty()) return {};
  const Turn turn = m_order.At(*number);
  Json json;
  json["pick"] = turn.pick;
  json["round"] = turn.round;
  json["pickInRound"] = turn.pickInRound;
  json["manager"] = ManagerJson(m_order.ManagerAt(turn.place)->ID());
  return json;
}

Json DraftReport::PickJson(std::int32_t number) {
  const auto index = static_cast<std::size_t>(number) - 1;
  const Pick& pick = m_session.Current()[index];
  const Turn turn = m_order.At(number);
  Json json;
  json["pick"] = number;
  json["round"] = turn.round;
  json["pickInRound"] = turn.pickInRound;
  json["manager"] = pick.IsEmpty() ? Json() : ManagerJson(*pick.managerID);
  json["picked"] = pick.what ? PickableJson(FactsOf(*pick.what)) : Json();
  json["saved"] = pick == m_session.Stored()[index];
  return json;
}

void DraftReport::PrintChange(Context& context, const std::vector<std::int32_t>& numbers,
                              const std::vector<std::string>& lines) {
  if (!context.json) {
    for (const std::string& line : lines)
      context.output.Line(line);
    context.output.Line(ClockText());
    return;
  }
  Json document;
  document["picks"] = Json::Array();
  for (const std::int32_t number : numbers)
    document["picks"].Append(PickJson(number));
  document["onTheClock"] = TurnJson(FirstEmptyPick(m_session.Current()));
  document["unsavedPicks"] = m_session.Unsaved().size();
  context.output.Line(JsonText(document));
}

}  // namespace cli
