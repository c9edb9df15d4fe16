#include "cli/DraftSession.h"

#include <utility>

#include "cli/BoardPage.h"
#include "cli/Find.h"
#include "cli/League.h"
#include "cli/SaveDraft.h"

namespace cli {

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

void DraftSession::Synchronize() {
  const auto season = CurrentSeason(m_league);
  if (season == m_season && season->Drafts() == m_drafts) return;
  const bool isSameDraft = m_season && m_season->ID() == season->ID();
  Picks stored = PicksOf(*season);
  const bool keeps = isSameDraft && (stored == m_stored || !Unsaved().empty());
  Step again;
  if (keeps) {
    for (const std::int32_t number : DifferingPicks(stored, m_picks))
      again.emplace_back(number, m_picks[static_cast<std::size_t>(number) - 1]);
  } else {
    m_picks = stored;
    m_steps.clear();
  }
  Take(season, std::move(stored));
  Put(again);
}

void DraftSession::Take(std::shared_ptr<HLIData::ISeasonInfo> season, Picks stored) {
  m_season = std::move(season);
  m_drafts = m_season->Drafts();
  m_stored = std::move(stored);
  m_touched.clear();
  m_isTouchedTwice = false;
}

void DraftSession::Put(const Step& picks) {
  for (const auto& [number, pick] : picks)
    m_season->RemoveDraft(number);  // clear all first: a pick may still hold a player who moves
  for (const auto& [number, pick] : picks) {
    PutPick(*m_season, number, pick);
    if (!m_touched.insert(number).second) m_isTouchedTwice = true;
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
  const Step before = m_steps.back();
  Put(before);
  m_steps.pop_back();
  for (const auto& [number, pick] : before) {
    m_picks[static_cast<std::size_t>(number) - 1] = pick;
    numbers.push_back(number);
  }
  return numbers;
}

void DraftSession::Save() {
  Synchronize();
  if (Unsaved().empty()) return;
  if (m_isTouchedTwice) {
    m_league.Service().DiscardCurrentSeasonInfo();
    Synchronize();
  }
  SaveDraft(m_league, m_stored, m_picks);
  Take(CurrentSeason(m_league), m_picks);
}

void DraftSession::Revert() {
  m_picks = m_stored;
  m_steps.clear();
  m_drafts.reset();
  m_league.Service().DiscardCurrentSeasonInfo();
}

void DraftSession::Publish() {
  if (m_page) m_page->Update(m_league);
}

}  // namespace cli
