#pragma once

#include <functional>
#include <memory>
#include <string>

#include "HLIData/IPickable.h"
#include "HLLeague/League.h"

namespace HLLeague {

/// What identifies a player or team to people; empty where there is nothing.
struct PickableFacts {
  std::string id;  ///< "P17", "T5": a letter for its kind, then the identifier
  std::string firstName;
  std::string lastName;  ///< of a team its nickname, or its name when it has none
  std::string name;      ///< the full name
  std::string team;      ///< short, "DAL"
  std::string position;  ///< short, "QB"
};

PickableFacts FactsOf(const HLIData::IPickable& pickable);

/// "Ann Lee (P17, DAL, QB)".
std::string PickableText(const PickableFacts& facts);

/// The words by which a user names a player or team.
struct PickableWords {
  std::string who;       ///< a name or the beginning of one; or an id with its letter, "P17", "T5"
  std::string team;      ///< the short name of the team he plays in; empty for any
  std::string position;  ///< the short name of the position; empty for any
  bool retired = false;  ///< among retired players too
  /// No teams; a number alone is an id then.
  bool playersOnly = false;
};

/// The player or team that is meant: the one whose full name, else last name, else beginning of the names
/// fits. Of a team, name, nickname and short name count as last names. `note` adds what to say of one in a
/// list of several, such as that he is taken.
/// Raises Failure when none fits, or several do, which it lists.
std::shared_ptr<HLIData::IPickable> FindPickable(
    League& league, const PickableWords& words,
    const std::function<std::string(const std::shared_ptr<HLIData::IPickable>&)>& note);

}  // namespace HLLeague
