#include "HLLeague/Find.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "HLLeague/Failure.h"
#include "HLLeague/Prizes.h"
#include "league/Numbers.h"
#include "league/Utf8.h"

namespace HLLeague {
namespace {

constexpr std::size_t kListedAtMost = 12;

std::string Shown(const Candidate& candidate) {
  return std::to_string(candidate.id) + "  " +
         Printable(candidate.whole.empty() ? candidate.main : candidate.whole);
}

[[noreturn]] void RaiseSeveral(const std::string& kind, const std::string& word,
                               const std::vector<Candidate>& candidates,
                               const std::vector<std::size_t>& meant) {
  std::string list = "Say which by its id:";
  for (std::size_t i = 0; i < std::min(meant.size(), kListedAtMost); ++i)
    list += "\n  " + Shown(candidates[meant[i]]);
  if (meant.size() > kListedAtMost)
    list += "\n  and " + std::to_string(meant.size() - kListedAtMost) + " more";
  throw Failure(FailureKind::Refused, "More than one " + kind + " may be meant by '" + word + "'.", list);
}

template <typename Record, typename MakeCandidate>
std::shared_ptr<Record> Meant(const std::string& kind, const std::string& word,
                              const std::vector<std::shared_ptr<Record>>& records,
                              const MakeCandidate& makeCandidate) {
  std::vector<Candidate> candidates;
  for (const auto& record : records)
    candidates.push_back(makeCandidate(*record));
  return records[IndexOfMeant(kind, word, candidates)];
}

template <typename Manager>
Candidate ManagerCandidate(const Manager& manager) {
  return {manager.ID(), manager.LastName(), FullName(manager)};
}

template <typename Record>
std::vector<std::shared_ptr<Record>> ItemsOf(
    const std::shared_ptr<HLIData::KeyedCollection<Record>>& collection) {
  return collection ? collection->Items() : std::vector<std::shared_ptr<Record>>();
}

std::string OfSeason(const std::string& kind, const HLIData::ISeasonInfo& season) {
  return kind + " of the season " + std::to_string(season.Year());
}

}  // namespace

std::size_t IndexOfMeant(const std::string& kind, const std::string& word,
                         const std::vector<Candidate>& candidates) {
  const std::string sought = LowerCase(word);
  const std::optional<std::int32_t> id = WholeNumber(word);
  const auto begins = [&sought](const std::string& name) { return LowerCase(name).starts_with(sought); };
  std::vector<std::function<bool(const Candidate&)>> fits;
  if (id) {
    fits.emplace_back([id](const Candidate& candidate) { return candidate.id == *id; });
  } else if (!word.empty()) {
    fits.emplace_back([&](const Candidate& candidate) { return LowerCase(candidate.main) == sought; });
    fits.emplace_back([&](const Candidate& candidate) { return LowerCase(candidate.whole) == sought; });
    fits.emplace_back(
        [&](const Candidate& candidate) { return begins(candidate.main) || begins(candidate.whole); });
  }
  for (const auto& fit : fits) {
    std::vector<std::size_t> meant;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      if (fit(candidates[i])) meant.push_back(i);
    }
    if (meant.size() == 1) return meant.front();
    if (!meant.empty()) RaiseSeveral(kind, word, candidates, meant);
  }
  throw Failure(FailureKind::Refused,
                "There is no " + kind + (id ? " with the id " + word : " '" + word + "'") + ".");
}

std::shared_ptr<HLIData::ISeasonInfo> CurrentSeason(League& league) {
  const std::string choose = "'halcyra season use YEAR' makes a season the current one.";
  const std::int32_t id = league.Service().CurrentSeasonID();
  if (id == 0) throw Failure(FailureKind::Refused, "No season is the current one.", choose);
  auto season = league.Service().GetCurrentSeasonInfo();
  if (!season) {
    league.RaiseShownMessages();
    throw Failure(FailureKind::Refused,
                  "There is no season with the id " + std::to_string(id) +
                      ", which is the current one by the settings.",
                  choose);
  }
  const std::string shown = league.TakeShownMessages();
  if (!shown.empty()) league.Note(shown);  // about other records, or a part that this command may not need
  return season;
}

std::shared_ptr<HLIData::IManagerInfo> FindManager(HLIData::ISeasonInfo& season, const std::string& word) {
  return Meant(OfSeason("manager", season), word, ItemsOf(season.Managers()),
               ManagerCandidate<HLIData::IManagerInfo>);
}

std::vector<std::shared_ptr<HLIData::IManagerTmplInfo>> AllManagers(League& league) {
  const auto found = league.Service().Search(HLIData::SearchType::Managers, "", false, false);
  league.RaiseShownMessages();
  std::vector<std::shared_ptr<HLIData::IManagerTmplInfo>> managers;
  for (const auto& pickable : ItemsOf(found)) {
    if (auto manager = std::dynamic_pointer_cast<HLIData::IManagerTmplInfo>(pickable))
      managers.push_back(std::move(manager));
  }
  return managers;
}

std::shared_ptr<HLIData::IManagerTmplInfo> FindManagerTmpl(League& league, const std::string& word) {
  return Meant("manager", word, AllManagers(league), ManagerCandidate<HLIData::IManagerTmplInfo>);
}

std::shared_ptr<HLIData::IPrizeInfo> FindPrize(HLIData::ISeasonInfo& season, const std::string& word) {
  return Meant(OfSeason("prize", season), word, ItemsOf(season.Prizes()),
               [](const HLIData::IPrizeInfo& prize) {
                 return Candidate{prize.ID(), prize.Desc(), {}};
               });
}

std::shared_ptr<HLIData::IPrizeTmplInfo> FindPrizeTmpl(League& league, const std::string& word) {
  return Meant("prize", word, AllPrizes(league), [](const HLIData::IPrizeTmplInfo& prize) {
    return Candidate{prize.ID(), prize.Desc(), {}};
  });
}

std::string FullName(const std::string& firstName, const std::string& lastName) {
  if (firstName.empty() || lastName.empty()) return firstName + lastName;
  return firstName + " " + lastName;
}

std::string FullName(const HLIData::IManagerInfo& manager) {
  return FullName(manager.FirstName(), manager.LastName());
}

std::string FullName(const HLIData::IManagerTmplInfo& manager) {
  return FullName(manager.FirstName(), manager.LastName());
}

}  // namespace HLLeague
