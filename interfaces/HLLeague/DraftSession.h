#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "HLLeague/Picks.h"
#include "HLLeague/StoredDraft.h"

namespace HLLeague {

class League;

/// The draft of the current season as it is played: the picks made since the last saving, which wait in
/// memory, and what was done last, to be taken back.
///
/// The season in memory shows the same picks. When the service has reloaded the season's draft meanwhile,
/// picks that are not saved are put into it again. Borrows the league.
class DraftSession {
 public:
  explicit DraftSession(League& league) : m_league(league) {}
  League& GetLeague() const { return m_league; }

  /// The current season, with the picks as they stand. Raises what CurrentSeason raises.
  HLIData::ISeasonInfo& Season();
  /// The picks as they stand.
  const Picks& Current();
  /// The picks as they are stored.
  const Picks& Stored();
  /// The stored picks that do not fit the season.
  const std::vector<MisfitPick>& Misfits();
  /// Raises Failure when there are such picks: for commands that go by which pick is empty or the last.
  void RequireWhole();
  /// The numbers of the picks that differ from what is stored; none before the draft was first looked at.
  /// Loads nothing.
  std::vector<std::int32_t> Unsaved() const { return DifferingPicks(m_picks, m_stored); }

  /// Raises Failure when there are such picks: for commands, named by `command` ("season use"), after which
  /// the draft is loaded again and they would be lost; to be called before anything is changed.
  void RefuseUnsaved(const std::string& command) const;

  /// Makes, replaces or, with empty picks, clears picks, in one step. No two picks of the draft may hold the
  /// same player or team afterwards.
  void Change(const std::vector<std::pair<std::int32_t, Pick>>& picks);
  /// Takes the last step back that was not taken back yet; the numbers of its picks. None when there is none.
  std::vector<std::int32_t> TakeBack();

  /// Stores the picks; see SaveDraft. After a failure they are kept here.
  void Save();
  /// Drops what is not saved, and reads the season again.
  void Revert();

 private:
  using Step = std::vector<std::pair<std::int32_t, Pick>>;  ///< the picks as they were before

  void Synchronize();
  /// Makes a season with its stored picks the one that is played.
  void Adopt(std::shared_ptr<HLIData::ISeasonInfo> season, StoredDraft stored);
  /// The same pick with the record that the service has now.
  Pick Reloaded(Pick pick) const;
  /// Puts the picks into the season that is loaded. Raises Failure, and changes nothing, for a manager who
  /// does not take part.
  void Put(const Step& picks);
  void RequireFreeOf(const Step& picks, std::int32_t number, const Pick& pick) const;

  League& m_league;
  std::shared_ptr<HLIData::ISeasonInfo> m_season;
  std::shared_ptr<HLIData::KeyedCollection<HLIData::IDraftInfo>> m_drafts;  ///< another one after a reload
  Picks m_picks;
  Picks m_stored;
  std::vector<MisfitPick> m_misfits;
  std::vector<Step> m_steps;
  std::set<std::int32_t> m_putPicks;  ///< picks that were put into the season since it was loaded or saved
  /// A pick was put twice: it may be marked changed though it is empty, or hold a team under a player's key.
  /// The season has to be loaded again before it is saved.
  bool m_needsReload = false;
};

// The picks of any season, with those of the current one that are not saved.

Picks PicksToShow(DraftSession& draft, const HLIData::ISeasonInfo& season);
/// How many of them are made.
std::int32_t PicksMadeIn(DraftSession& draft, const HLIData::ISeasonInfo& season);
/// How many each manager has made, by his id.
std::map<std::int32_t, std::int32_t> PicksByManager(DraftSession& draft, const HLIData::ISeasonInfo& season);

}  // namespace HLLeague
