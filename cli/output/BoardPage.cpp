#include "cli/output/BoardPage.h"

#include "HLLeague/DraftOrder.h"
#include "HLLeague/DraftSession.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/Pickables.h"
#include "HLLeague/Seasons.h"
#include "cli/output/HtmlPage.h"
#include "cli/output/OutputFile.h"
#include "records/RecordKey.h"

namespace cli {

using namespace HLLeague;

namespace {

constexpr std::int32_t kLongestRefresh = 3600;

/// Writes one board.
class BoardWriter {
 public:
  BoardWriter(League& league, const HLIData::ISeasonInfo& season, const Picks& picks, const Picks& stored)
      : m_season(season),
        m_picks(picks),
        m_stored(stored),
        m_order(season),
        m_isSettled(m_order.WhyUnsettled().empty()),
        m_due(FirstEmptyPick(picks)),
        m_badges(league) {}

  HtmlPage Page() const {
    HtmlPage page;
    page.isBoard = true;
    page.title = "Draft " + std::to_string(m_season.Year());
    const std::size_t made = DifferingPicks(m_picks, Picks(m_picks.size())).size();
    page.note = std::to_string(made) + " of " + CountOfPicks(m_picks.size()) + " made";
    const std::size_t unsaved = DifferingPicks(m_picks, m_stored).size();
    if (unsaved > 0) page.note += ", " + std::to_string(unsaved) + " not saved (*)";
    page.body = "<p class=\"clock\">" + Clock() + "</p>\n</header>\n<div class=\"box\"><table>\n" + Head() +
                "<tbody>\n";
    for (std::int32_t round = 1; round <= m_order.NoOfRounds(); ++round)
      page.body += Row(round);
    page.body += "</tbody>\n</table></div>\n";
    return page;
  }

 private:
  std::string Clock() const {
    if (!m_isSettled) return HtmlText(m_order.WhyUnsettled());
    if (!m_due) return "The draft is complete.";
    return "&#9654; On the clock: <strong>" + HtmlText(FullName(*m_order.ManagerOn(*m_due))) +
           "</strong>, pick " + std::to_string(*m_due) + ", round " +
           std::to_string(m_order.At(*m_due).round);
  }

  std::string NameAt(std::int32_t place) const {
    const auto manager = m_order.ManagerAt(place);
    return HtmlText(manager ? FullName(*manager) : "(nobody)");
  }

  std::string Head() const {
    std::string html = "<thead><tr><th scope=\"col\">Round</th>";
    for (std::int32_t place = 1; place <= m_order.NoOfManagers(); ++place)
      html += "<th scope=\"col\">" + NameAt(place) + "</th>";
    return html + "</tr></thead>\n";
  }

  std::string Row(std::int32_t round) const {
    const std::int32_t managers = m_order.NoOfManagers();
    const bool isForth = round % 2 == 1;
    std::string html = std::string("<tr") + (isForth ? "" : " class=\"back\"") + "><th scope=\"row\">" +
                       std::to_string(round) + (isForth ? " &rarr;" : " &larr;") + "</th>";
    for (std::int32_t place = 1; place <= managers; ++place)
      html += Cell((round - 1) * managers + (isForth ? place : managers - place + 1), place);
    return html + "</tr>\n";
  }

  std::string Cell(std::int32_t number, std::int32_t place) const {
    const auto index = static_cast<std::size_t>(number) - 1;
    const Pick& pick = m_picks[index];
    const bool isDue = m_isSettled && m_due == number;
    const bool isUnsaved = pick != m_stored[index];
    const PickableFacts facts = pick.what ? FactsOf(*pick.what) : PickableFacts();
    std::string html = std::string("<td") +
                       (isDue            ? " class=\"due\""
                        : pick.IsEmpty() ? " class=\"empty\""
                                         : "") +
                       "><div class=\"top\"><span>" + m_badges.Html(facts.position) + " " +
                       HtmlText(facts.team) + "<span class=\"who\">" + NameAt(place) +
                       "</span></span><span>" + std::to_string(number) + (isUnsaved ? "*" : "") +
                       "</span></div>";
    if (isDue) {
      html += "<b>&#9654; on the clock</b>";
    } else if (pick.what) {
      const std::string first = facts.name == facts.lastName ? "" : facts.firstName;
      html += (first.empty() ? "" : "<span class=\"first\">" + HtmlText(first) + "</span> ") + "<b>" +
              HtmlText(facts.lastName) + "</b>";
    } else if (!pick.IsEmpty()) {
      html += pick.type == HLIData::PickType::None ? "<b>(nobody)</b>" : "<b>(unknown)</b>";
    }
    return html + OfAnother(pick, number) + "</td>";
  }

  /// Who made a pick, if it was another than whose turn it was.
  std::string OfAnother(const Pick& pick, std::int32_t number) const {
    if (pick.IsEmpty() || !m_isSettled || m_order.ManagerOn(number)->ID() == *pick.managerID) return {};
    const std::string id = std::to_string(*pick.managerID);
    const auto manager = ManagersOf(m_season).Find(HLDataSrvc::RecordKey(*pick.managerID));
    return "<span class=\"mark\">~ picked by " + HtmlText(manager ? manager->LastName() : id) + "</span>";
  }

  const HLIData::ISeasonInfo& m_season;
  const Picks& m_picks;
  const Picks& m_stored;
  DraftOrder m_order;
  bool m_isSettled;
  std::optional<std::int32_t> m_due;
  PositionBadges m_badges;
};

}  // namespace

std::string BoardPage(League& league, const HLIData::ISeasonInfo& season, const Picks& picks,
                      const Picks& stored, const std::optional<std::int32_t>& refresh) {
  HtmlPage page = BoardWriter(league, season, picks, stored).Page();
  page.refresh = refresh;
  return page.Text();
}

BoardFile::BoardFile(std::string path, const std::optional<std::int32_t>& refresh)
    : m_path(std::move(path)), m_refresh(refresh) {
  if (refresh && (*refresh < 1 || *refresh > kLongestRefresh))
    throw Failure(FailureKind::WrongUsage, "A page is loaded again after 1 to 3600 seconds.");
  if (IsThere(m_path) && BeginningOf(m_path, kBoardPageBeginning.size()) != kBoardPageBeginning)
    throw Failure(FailureKind::Refused,
                  "The file " + m_path + " is there already, and is no page of a board.");
}

void BoardFile::Update(DraftSession& draft) {
  std::string page = BoardPage(draft.GetLeague(), draft.Season(), draft.Current(), draft.Stored(), m_refresh);
  if (page == m_written) return;
  WriteFileAtomically(m_path, page);
  m_written = std::move(page);
}

}  // namespace cli
