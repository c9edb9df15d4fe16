#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "HLLeague/Picks.h"

namespace HLLeague {

/// Where a pick stands in the draft; all numbers count from 1.
struct Turn {
  std::int32_t pick = 0;
  std::int32_t round = 0;
  std::int32_t pickInRound = 0;
  std::int32_t place = 0;  ///< whose turn it is: the place in the ranking
};

/// Who picks when: the managers of a season by their rank, each once a round, in reverse in every even round.
///
/// A season's draft can be looked at before its order is settled; who is on the clock is unknown then.
class DraftOrder {
 public:
  explicit DraftOrder(const HLIData::ISeasonInfo& season);

  /// Managers in a round, as the season has it set; without picks only those who take part.
  std::int32_t NoOfManagers() const { return m_noOfManagers; }
  std::int32_t NoOfRounds() const { return m_noOfRounds; }
  std::int32_t NoOfPicks() const { return m_noOfPicks; }

  /// `pick` from 1 to NoOfPicks.
  Turn At(std::int32_t pick) const;
  /// The manager at a place of the ranking; empty when fewer take part. Those without a rank come last.
  std::shared_ptr<HLIData::IManagerInfo> ManagerAt(std::int32_t place) const;
  /// The manager whose turn a pick is.
  std::shared_ptr<HLIData::IManagerInfo> ManagerOn(std::int32_t pick) const {
    return ManagerAt(At(pick).place);
  }

  /// What keeps the order from being settled, as a sentence; empty when it is.
  std::string WhyUnsettled() const;
  /// Raises Failure with that sentence, and what to do about it.
  void RequireSettled() const;
  /// Raises Failure for a pick number outside the draft.
  void RequirePick(std::int32_t pick) const;

 private:
  std::int32_t m_year;
  std::string m_setSize;  ///< what the season is set to: "10 managers and 15 rounds"
  std::int32_t m_noOfManagers;
  std::vector<std::shared_ptr<HLIData::IManagerInfo>> m_managers;  ///< in the order of the ranking
  std::int32_t m_noOfPicks;
  std::int32_t m_noOfRounds;
};

/// The first empty pick from number `from` on, which is the one that is due; none in a draft that is
/// complete.
std::optional<std::int32_t> FirstEmptyPick(const Picks& picks, std::int32_t from = 1);

}  // namespace HLLeague
