#include "HLLeague/DraftOrder.h"

#include <algorithm>
#include <cstddef>

#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/Seasons.h"
#include "records/HLUtils.h"

namespace HLLeague {

DraftOrder::DraftOrder(const HLIData::ISeasonInfo& season)
    : m_year(season.Year()),
      m_setSize(std::to_string(season.NoOfManagers()) + " managers and " +
                std::to_string(season.NoOfRounds()) + " rounds"),
      m_noOfManagers(std::max(season.NoOfManagers(), 0)),
      m_managers(ManagersInOrder(season)),
      m_noOfPicks(m_noOfManagers == 0 ? 0 : DraftsOf(season).Count()) {
  // Two negative numbers have picks, but no place for them. Without picks the settings may be absurd.
  if (m_noOfPicks == 0)
    m_noOfManagers = std::min(m_noOfManagers, static_cast<std::int32_t>(m_managers.size()));
  // The picks that there are count, should the settings have been changed since the season was loaded.
  m_noOfRounds = m_noOfManagers == 0 ? 0 : m_noOfPicks / m_noOfManagers;
}

Turn DraftOrder::At(std::int32_t pick) const {
  Turn turn{.pick = pick};
  HLDataSrvc::HLUtils::GetDraftPosition(pick, m_noOfManagers, turn.place, turn.round, turn.pickInRound);
  return turn;
}

std::shared_ptr<HLIData::IManagerInfo> DraftOrder::ManagerAt(std::int32_t place) const {
  const auto index = static_cast<std::size_t>(place) - 1;
  return place < 1 || index >= m_managers.size() ? nullptr : m_managers[index];
}

std::string DraftOrder::WhyUnsettled() const {
  const std::string year = std::to_string(m_year);
  if (m_noOfPicks == 0) {
    return "The draft of the season " + year + " has no picks: it is set to " + m_setSize + ".";
  }
  if (m_managers.size() < static_cast<std::size_t>(m_noOfManagers)) {
    return "The draft order is not settled: the season " + year + " is set to " +
           std::to_string(m_noOfManagers) + " managers, and " + std::to_string(m_managers.size()) +
           (m_managers.size() == 1 ? " takes part." : " take part.");
  }
  std::string unranked;
  for (const auto& manager : m_managers) {
    if (manager->Rank() < 1) unranked += (unranked.empty() ? "" : ", ") + FullName(*manager);
  }
  return unranked.empty() ? "" : "The draft order is not settled; not ranked: " + unranked + ".";
}

void DraftOrder::RequireSettled() const {
  const std::string why = WhyUnsettled();
  if (why.empty()) return;
  std::string hint = "'manager rank' ranks the managers.";
  if (m_noOfPicks == 0) {
    hint = "'season set' sets them.";
  } else if (m_managers.size() < static_cast<std::size_t>(m_noOfManagers)) {
    hint = "'manager join' lets managers take part, 'season set' changes their number.";
  }
  throw Failure(FailureKind::Refused, why, hint);
}

void DraftOrder::RequirePick(std::int32_t pick) const {
  if (pick >= 1 && pick <= m_noOfPicks) return;
  throw Failure(
      FailureKind::Refused,
      "Pick " + std::to_string(pick) + " lies outside the draft of the season " + std::to_string(m_year) +
          ", which has " + CountOfPicks(static_cast<std::size_t>(m_noOfPicks)) + ": " +
          std::to_string(m_noOfManagers) + " managers, " + std::to_string(m_noOfRounds) + " rounds.");
}

std::optional<std::int32_t> FirstEmptyPick(const Picks& picks, std::int32_t from) {
  for (std::size_t i = static_cast<std::size_t>(std::max(from, 1)) - 1; i < picks.size(); ++i) {
    if (picks[i].IsEmpty()) return static_cast<std::int32_t>(i) + 1;
  }
  return std::nullopt;
}

}  // namespace HLLeague
