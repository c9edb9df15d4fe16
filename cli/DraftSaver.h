#pragma once

#include <cstddef>
#include <string>

#include "cli/League.h"
#include "cli/Picks.h"

namespace cli {

/// Brings the stored draft of the current season to a wanted state, whatever is stored.
///
/// The service's SaveDrafts alone does not: what it writes are the picks of the season in memory to which
/// another player or team was given. It leaves the row of a pick that was emptied, leaves the old player in
/// the row of a pick that a team took, does not notice that a pick has changed its manager, and fails on a
/// changed pick without one. So the season is read again first, to know what is stored; where a row would
/// have to go or to lose something, the draft is deleted and written whole; and at the end it is read again
/// and compared.
class DraftSaver {
 public:
  explicit DraftSaver(League& league) : m_league(league) {}

  /// Stores the wanted picks, as many as the season has, and answers how many were written. Afterwards, also
  /// after a failure, the season in memory is a fresh one that holds what is stored.
  /// Raises Failure: before anything is written, for picks that cannot be; later, with what is stored now.
  std::size_t Save(const Picks& wanted);

 private:
  /// Reads the season again; its picks are the stored ones.
  Picks ReadStored();
  void Wipe();
  void Write(const Picks& wanted, const Picks& stored);
  /// Reads the season again; raises Failure with what is stored unless that is what is wanted. `reason`
  /// is why writing has failed, if it has.
  void RequireStored(const Picks& wanted, const Picks& before, const std::string& reason);

  League& m_league;
};

}  // namespace cli
