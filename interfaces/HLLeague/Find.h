#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HLIData/IDataService.h"
#include "HLLeague/League.h"

namespace HLLeague {

// Resolves what a user typed (id or name) to a record. A word may be an id, or a name in any case. All
// raise Failure (Refused): for a word that fits nothing, and for one that fits several, which are then
// listed.

/// One of the records that a word may mean.
struct Candidate {
  std::int32_t id = 0;
  std::string main;   ///< the name that alone is enough: a last name, a description
  std::string whole;  ///< the full name; empty when there is no other than `main`
};

/// The index of the candidate that `word` means. A number is an id. Otherwise the first of these that fits
/// anything decides: the whole of `main`, the whole of `whole`, the beginning of either.
/// `kind` is what the candidates are, for the message: "manager of the season 2010".
std::size_t IndexOfMeant(const std::string& kind, const std::string& word,
                         const std::vector<Candidate>& candidates);

/// The current season. Raises Failure when no season is current (none is made then), or when it could not be
/// loaded, with the message that the service has shown. A message about one that was loaded is a note.
std::shared_ptr<HLIData::ISeasonInfo> CurrentSeason(League& league);

/// A manager who takes part in a season.
std::shared_ptr<HLIData::IManagerInfo> FindManager(HLIData::ISeasonInfo& season, const std::string& word);
/// A manager's master record, whether he takes part or not.
std::shared_ptr<HLIData::IManagerTmplInfo> FindManagerTmpl(League& league, const std::string& word);
/// The master records of all managers, by first name, last name and id.
std::vector<std::shared_ptr<HLIData::IManagerTmplInfo>> AllManagers(League& league);
/// A prize that a season puts up.
std::shared_ptr<HLIData::IPrizeInfo> FindPrize(HLIData::ISeasonInfo& season, const std::string& word);
/// A prize's master record.
std::shared_ptr<HLIData::IPrizeTmplInfo> FindPrizeTmpl(League& league, const std::string& word);

/// "Ann Lee"; one of the names alone when the other is empty.
std::string FullName(const std::string& firstName, const std::string& lastName);
std::string FullName(const HLIData::IManagerInfo& manager);
std::string FullName(const HLIData::IManagerTmplInfo& manager);

}  // namespace HLLeague
