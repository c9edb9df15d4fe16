#include "cli/DraftSession.h"

#include <utility>

#include "cli/BoardPage.h"
#include "cli/DraftSaver.h"
#include "cli/Find.h"
#include "cli/League.h"

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
  const bool keeps = isSameDraft && !Unsaved().empty();
  Picks stored = PicksOf(*season);
  Step again;
  if (keeps) {
    for (const std::int32_t number : DifferingPicks(stored, m_picks))
      again.emplace_back(number, m_picks[static_cast<std::size_t>(number) - 1]);
  } else {
    m_picks = stored;
    m_steps.clear();
  }
  m_season = season;
  m_stored = std::move(stored);
  Put(again);
  m_drafts = season->Drafts();
}

void DraftSession::Put(const Step& picks) {
  for (const auto& [number, pick] : picks)
    m_season->RemoveDraft(number);  // all first, so that nobody is in the way
  for (const auto& [number, pick] : picks)
    PutPick(*m_season, number, pick);
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

std::size_t DraftSession::Save() {
  Synchronize();
  const Picks wanted = m_picks;
  const std::size_t written = DraftSaver(m_league).Save(wanted);
  m_season = CurrentSeason(m_league);
  m_drafts = m_season->Drafts();
  m_stored = wanted;
  return written;
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
