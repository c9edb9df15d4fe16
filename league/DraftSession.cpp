#include "HLLeague/DraftSession.h"

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>

#include "HLDataSrvc/ServiceDatabase.h"
#include "HLIData/IPlayerInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/League.h"
#include "HLLeague/SaveDraft.h"
#include "HLLeague/Seasons.h"
#include "records/RecordKey.h"

namespace HLLeague {

HLIData::ISeasonInfo& DraftSession::Season() {
  Synchronize();
  return *m_season;
}

const Picks& DraftSession::Current() {
  Synchronize();
  return m_picks;
}

const Picks& DraftSession::Stored() {
  Synchronize();
  return m_stored;
}

const std::vector<MisfitPick>& DraftSession::Misfits() {
  Synchronize();
  return m_misfits;
}

void DraftSession::RequireWhole() {
  if (Misfits().empty()) return;
  std::string text;
  for (const MisfitPick& misfit : m_misfits)
    text += " " + misfit.why;
  throw Failure(
      FailureKind::Refused,
      "The draft of the season " + std::to_string(m_season->Year()) + " has to be mended first." + text,
      "'draft clear N' empties a pick, 'draft pick WHO --pick N' replaces one.");
}

void DraftSession::Synchronize() {
  const auto season = CurrentSeason(m_league);
  if (season == m_season && season->Drafts() == m_drafts) return;
  const bool isSameDraft = m_season && m_season->ID() == season->ID();
  StoredDraft stored = ReadStoredDraft(m_league, *season);
  const bool keeps = isSameDraft && !Unsaved().empty();
  Step again;
  if (keeps) {
    for (const std::int32_t number : DifferingPicks(stored.picks, m_picks))
      again.emplace_back(number, Reloaded(m_picks[static_cast<std::size_t>(number) - 1]));
  } else {
    m_steps.clear();
  }
  m_picks = stored.picks;
  Adopt(season, std::move(stored));
  Put(again);
  for (const auto& [number, pick] : again)
    m_picks[static_cast<std::size_t>(number) - 1] = pick;
}

Pick DraftSession::Reloaded(Pick pick) const {
  std::shared_ptr<HLIData::IPickable> what;
  try {
    if (pick.type == HLIData::PickType::Player) {
      what =
          std::dynamic_pointer_cast<HLIData::IPickable>(HLDataSrvc::FindPlayer(m_league.Service(), pick.id));
    } else if (const auto teams = m_league.Service().GetTeams()) {
      what = std::dynamic_pointer_cast<HLIData::IPickable>(teams->Find(HLDataSrvc::RecordKey(pick.id)));
    }
  } catch (const std::exception&) {
    // The record of before still has type and id.
  }
  if (pick.what && what) pick.what = what;
  return pick;
}

void DraftSession::Adopt(std::shared_ptr<HLIData::ISeasonInfo> season, StoredDraft stored) {
  m_season = std::move(season);
  m_drafts = m_season->Drafts();
  m_stored = std::move(stored.picks);
  m_misfits = std::move(stored.misfits);
  m_putPicks.clear();
  m_needsReload = false;
}

/// Raises Failure when a pick that is not among `picks` holds the same as one of them.
void DraftSession::RequireFreeOf(const Step& picks, std::int32_t number, const Pick& pick) const {
  if (pick.IsEmpty() || pick.id == 0) return;
  for (std::size_t i = 0; i < m_picks.size(); ++i) {
    const auto other = static_cast<std::int32_t>(i) + 1;
    const bool isChanged =
        std::any_of(picks.begin(), picks.end(), [&](const auto& change) { return change.first == other; });
    if (isChanged || m_picks[i].IsEmpty() || !m_picks[i].HoldsSameAs(pick)) continue;
    throw Failure(FailureKind::Refused, "Pick " + std::to_string(number) + " cannot be what pick " +
                                            std::to_string(other) + " is already.");
  }
}

void DraftSession::Put(const Step& picks) {
  for (const auto& [number, pick] : picks) {
    RequireManager(*m_season, number, pick);
    RequireFreeOf(picks, number, pick);
  }
  for (const auto& [number, pick] : picks)
    m_season->RemoveDraft(number);  // clear all first: a pick may still hold a player who moves
  for (const auto& [number, pick] : picks) {
    PutPick(*m_season, number, pick);
    if (!m_putPicks.insert(number).second) m_needsReload = true;
  }
}

void DraftSession::Change(const std::vector<std::pair<std::int32_t, Pick>>& picks) {
  Synchronize();
  Step before;
  for (const auto& [number, pick] : picks)
    before.emplace_back(number, m_picks[static_cast<std::size_t>(number) - 1]);
  Put(picks);
  for (const auto& [number, pick] : picks)
    m_picks[static_cast<std::size_t>(number) - 1] = pick;
  m_steps.push_back(std::move(before));
}

std::vector<std::int32_t> DraftSession::TakeBack() {
  Synchronize();
  std::vector<std::int32_t> numbers;
  if (m_steps.empty()) return numbers;
  Step before = m_steps.back();
  m_steps.pop_back();  // also when it cannot be taken back: the next one may be
  for (auto& [number, pick] : before)
    pick = Reloaded(pick);
  Put(before);
  for (const auto& [number, pick] : before) {
    m_picks[static_cast<std::size_t>(number) - 1] = pick;
    numbers.push_back(number);
  }
  return numbers;
}

void DraftSession::Save() {
  Synchronize();
  if (Unsaved().empty()) return;
  if (m_needsReload) {
    m_league.Service().DiscardCurrentSeasonInfo();
    Synchronize();
  }
  SaveDraft(m_league, *m_season, m_stored, m_picks, m_misfits.empty());
  if (!m_misfits.empty()) m_league.Service().DiscardCurrentSeasonInfo();
  const auto season = CurrentSeason(m_league);
  Adopt(season, m_misfits.empty() ? StoredDraft{m_picks, {}} : ReadStoredDraft(m_league, *season));
}

void DraftSession::Revert() {
  m_picks = m_stored;
  m_steps.clear();
  m_drafts.reset();
  m_league.Service().DiscardCurrentSeasonInfo();
}

void DraftSession::RefuseUnsaved(const std::string& command) const {
  const std::vector<std::int32_t> unsaved = Unsaved();
  if (unsaved.empty()) return;
  throw Failure(
      FailureKind::Refused,
      "'" + command + "' reads the draft again, and changes of " + PickNumbers(unsaved) + " are not saved.",
      "'draft save' saves them, 'draft revert' drops them.");
}

Picks PicksToShow(DraftSession& draft, const HLIData::ISeasonInfo& season) {
  return IsCurrent(draft.GetLeague(), season) ? draft.Current()
                                              : ReadStoredDraft(draft.GetLeague(), season).picks;
}

std::int32_t PicksMadeIn(DraftSession& draft, const HLIData::ISeasonInfo& season) {
  const Picks picks = PicksToShow(draft, season);
  return static_cast<std::int32_t>(
      std::count_if(picks.begin(), picks.end(), [](const Pick& pick) { return !pick.IsEmpty(); }));
}

std::map<std::int32_t, std::int32_t> PicksByManager(DraftSession& draft, const HLIData::ISeasonInfo& season) {
  std::map<std::int32_t, std::int32_t> counts;
  for (const Pick& pick : PicksToShow(draft, season)) {
    if (pick.managerID) ++counts[*pick.managerID];
  }
  return counts;
}

}  // namespace HLLeague
