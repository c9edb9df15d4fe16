#include "HLLeague/Pickables.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "HLIData/IPlayerInfo.h"
#include "HLIData/ITeamInfo.h"
#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "HLLeague/Players.h"
#include "league/Nearest.h"
#include "league/Numbers.h"
#include "league/TextTable.h"
#include "league/Utf8.h"
#include "records/RecordKey.h"

namespace HLLeague {
namespace {

using HLIData::IPickable;
using HLIData::PickType;
using Pickables = std::vector<std::shared_ptr<IPickable>>;

constexpr std::size_t kListedAtMost = 15;

PickableFacts FactsOfPlayer(const HLIData::IPlayerInfo& player) {
  PickableFacts facts;
  facts.id = "P" + std::to_string(player.ID());
  facts.firstName = player.FirstName();
  facts.lastName = player.LastName();
  facts.name = FullName(facts.firstName, facts.lastName);
  if (const auto team = player.Team()) facts.team = team->Abbr();
  if (const auto position = player.Position()) facts.position = position->Abbr();
  return facts;
}

PickableFacts FactsOfTeam(const HLIData::ITeamInfo& team) {
  PickableFacts facts;
  facts.id = "T" + std::to_string(team.ID());
  facts.firstName = team.Name();
  facts.lastName = team.Nickname().empty() ? team.Name() : team.Nickname();
  facts.name = FullName(team.Name(), team.Nickname());
  facts.team = team.Abbr();
  if (const auto position = team.Position()) facts.position = position->Abbr();
  return facts;
}

/// The records that the service's search finds. If one of them cannot be loaded, which fails the search, all
/// records whose names may be meant: the caller filters them.
Pickables Search(League& league, const std::string& text, bool skipRetired) {
  const auto found = league.Service().Search(HLIData::SearchType::PlayersAndTeams, text,
                                             /*curSeasonOnly=*/false, skipRetired);
  if (league.TakeShownMessages().empty()) return found ? found->Items() : Pickables();
  Pickables all;
  for (const auto& player : AllPlayers(league)) {
    if (!skipRetired || !player->IsRetired()) all.push_back(std::dynamic_pointer_cast<IPickable>(player));
  }
  if (const auto teams = league.Service().GetTeams()) {
    for (const auto& team : *teams)
      all.push_back(std::dynamic_pointer_cast<IPickable>(team));
  }
  league.RaiseShownMessages();
  return all;
}

struct PickableID {
  PickType type;
  std::int32_t id;
};

/// "P17" and "T5", in either case; 17 where only players are meant.
std::optional<PickableID> IDIn(const PickableWords& words) {
  const std::string& who = words.who;
  if (words.playersOnly) {
    if (const auto id = WholeNumber(who)) return PickableID{PickType::Player, *id};
  }
  if (who.size() < 2) return std::nullopt;
  const std::string letter = LowerCase(who.substr(0, 1));
  if (letter != "p" && (letter != "t" || words.playersOnly)) return std::nullopt;
  PickableID wanted{letter == "p" ? PickType::Player : PickType::Team, 0};
  const auto [stop, error] = std::from_chars(who.data() + 1, who.data() + who.size(), wanted.id);
  if (error != std::errc() || stop != who.data() + who.size()) return std::nullopt;
  return wanted;
}

std::shared_ptr<IPickable> ByID(League& league, const PickableID& wanted) {
  const bool isPlayer = wanted.type == PickType::Player;
  std::shared_ptr<IPickable> found;
  if (isPlayer) {
    found = std::dynamic_pointer_cast<IPickable>(PlayerByID(league, wanted.id));
  } else if (const auto teams = league.Service().GetTeams()) {
    found = std::dynamic_pointer_cast<IPickable>(teams->Find(HLDataSrvc::RecordKey(wanted.id)));
  }
  league.RaiseShownMessages();
  if (found) return found;
  throw Failure(FailureKind::Refused, std::string("There is no ") + (isPlayer ? "player" : "team") +
                                          " with the id " + std::to_string(wanted.id) + ".");
}

/// Raises Failure when the options that go with an id say something else of its record.
void RequireAgrees(const IPickable& pickable, const PickableWords& words) {
  const PickableFacts facts = FactsOf(pickable);
  const auto differs = [](const std::string& wanted, const std::string& is) {
    return !wanted.empty() && LowerCase(wanted) != LowerCase(is);
  };
  if (differs(words.team, facts.team) || differs(words.position, facts.position)) {
    const std::string team = words.team.empty() ? "" : " --team " + words.team;
    const std::string position = words.position.empty() ? "" : " --position " + words.position;
    throw Failure(FailureKind::Refused,
                  words.who + " is " + PickableText(facts) + ", which" + team + position + " contradicts.");
  }
  const auto* player = dynamic_cast<const HLIData::IPlayerInfo*>(&pickable);
  if (player != nullptr && player->IsRetired() && !words.retired) {
    throw Failure(FailureKind::Refused, PickableText(facts) + " is retired.",
                  "'--retired' takes retired players too.");
  }
}

/// The words of a name; the service takes these separators for the same.
std::vector<std::string> WordsOf(const std::string& text) {
  std::vector<std::string> words(1);
  for (const char c : text) {
    if (c != ' ' && c != ',' && c != ';') {
      words.back() += c;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  if (words.back().empty()) words.pop_back();
  return words;
}

/// A word as a pattern of the service's search that finds it, and perhaps more: an apostrophe would end the
/// statement's literal, and other characters have a meaning in patterns.
std::string AsPattern(std::string word) {
  for (char& c : word) {
    if (std::string("'*?#[]").find(c) != std::string::npos) c = '?';
  }
  return word;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += (text.empty() ? "" : " ") + word;
  return text;
}

/// How well a name fits what was typed; the less, the better. None: not at all.
std::optional<int> Fit(const IPickable& pickable, const std::string& typed) {
  const PickableFacts facts = FactsOf(pickable);
  const std::string first = LowerCase(Joined(WordsOf(facts.firstName)));
  const std::string last = LowerCase(Joined(WordsOf(facts.lastName)));
  const std::string whole = FullName(first, last);
  const std::string turned = FullName(last, first);
  const bool isTeam = pickable.PickType() == PickType::Team;
  if (typed == whole || typed == turned) return 0;
  if (typed == last || (isTeam && (typed == first || typed == LowerCase(facts.team)))) return 1;
  if (whole.starts_with(typed) || turned.starts_with(typed)) return 2;
  return std::nullopt;
}

/// Both names begin with words that were typed: "jo sm" for Joe Smith, in either order.
bool FitsWordByWord(const IPickable& pickable, const std::vector<std::string>& typed) {
  if (typed.size() != 2) return false;
  const PickableFacts facts = FactsOf(pickable);
  const std::string first = LowerCase(facts.firstName);
  const std::string last = LowerCase(facts.lastName);
  return (first.starts_with(typed[0]) && last.starts_with(typed[1])) ||
         (first.starts_with(typed[1]) && last.starts_with(typed[0]));
}

/// Those that fit best of all.
Pickables BestOf(const Pickables& found, const std::string& who) {
  const std::vector<std::string> words = WordsOf(LowerCase(who));
  const std::string typed = Joined(words);
  Pickables best;
  int bestFit = 4;
  for (const auto& pickable : found) {
    std::optional<int> fit = Fit(*pickable, typed);
    if (!fit && FitsWordByWord(*pickable, words)) fit = 3;
    if (!fit || *fit > bestFit) continue;
    if (*fit < bestFit) best.clear();
    bestFit = *fit;
    best.push_back(pickable);
  }
  return best;
}

/// Raises Failure for a short name that no team has, or no position.
template <typename Record>
void RequireKnown(League& league, const std::string& kind, const std::string& abbr,
                  const std::shared_ptr<HLIData::KeyedCollection<Record>>& records) {
  league.RaiseShownMessages();
  if (abbr.empty()) return;
  std::string known;
  for (const auto& record : *records) {
    if (LowerCase(record->Abbr()) == LowerCase(abbr)) return;
    known += (known.empty() ? "" : ", ") + record->Abbr();
  }
  throw Failure(FailureKind::Refused, "There is no " + kind + " '" + abbr + "'.", "There are " + known + ".");
}

Pickables OfTeamAndPosition(const Pickables& found, const PickableWords& words) {
  Pickables left;
  const auto fits = [](const std::string& wanted, const std::string& is) {
    return wanted.empty() || LowerCase(wanted) == LowerCase(is);
  };
  std::copy_if(found.begin(), found.end(), std::back_inserter(left), [&](const auto& pickable) {
    const PickableFacts facts = FactsOf(*pickable);
    return fits(words.team, facts.team) && fits(words.position, facts.position);
  });
  return left;
}

Pickables OfKind(Pickables found, const PickableWords& words) {
  if (!words.playersOnly) return found;
  found.erase(std::remove_if(found.begin(), found.end(),
                             [](const auto& pickable) { return pickable->PickType() != PickType::Player; }),
              found.end());
  return found;
}

/// Those of whom there is nothing to say come first.
std::string ListOf(Pickables pickables,
                   const std::function<std::string(const std::shared_ptr<IPickable>&)>& note) {
  std::stable_partition(pickables.begin(), pickables.end(),
                        [&](const auto& pickable) { return note(pickable).empty(); });
  TextTable table({{"id"}, {"name"}, {"team"}, {"position"}, {""}});
  for (std::size_t i = 0; i < std::min(pickables.size(), kListedAtMost); ++i) {
    const PickableFacts facts = FactsOf(*pickables[i]);
    table.Add({facts.id, Printable(facts.name), facts.team, facts.position, note(pickables[i])});
  }
  std::string list;
  for (const std::string& line : table.Lines())
    list += (list.empty() ? "" : "\n") + line;
  if (pickables.size() > kListedAtMost)
    list += "\nand " + std::to_string(pickables.size() - kListedAtMost) + " more";
  return list;
}

/// All that may be meant. The service pairs two words as first and last name; names of several words are
/// found by the first of them.
Pickables Found(League& league, const PickableWords& wanted, bool skipRetired) {
  Pickables found = OfKind(Search(league, AsPattern(wanted.who), skipRetired), wanted);
  const std::vector<std::string> words = WordsOf(wanted.who);
  if (words.size() > 1 && BestOf(found, wanted.who).empty())
    found = OfKind(Search(league, AsPattern(words.front()), skipRetired), wanted);
  return found;
}

/// "Did you mean Ann Lee (P17, DAL, QB)?"; empty when no name is near.
std::string Suggestion(League& league, const PickableWords& words) {
  std::vector<std::string> names;
  std::vector<std::string> texts;
  const Pickables near = Search(league, AsPattern(FirstLetter(words.who)), /*skipRetired=*/!words.retired);
  for (const auto& pickable : OfKind(near, words)) {
    const PickableFacts facts = FactsOf(*pickable);
    for (const std::string& name : {facts.name, facts.lastName}) {
      names.push_back(name);
      texts.push_back(PickableText(facts));
    }
  }
  const std::string nearest = NearestOf(Joined(WordsOf(words.who)), names);
  if (nearest.empty()) return {};
  const auto index = std::find(names.begin(), names.end(), nearest) - names.begin();
  return "Did you mean " + texts[static_cast<std::size_t>(index)] + "?";
}

[[noreturn]] void RaiseNobody(League& league, const PickableWords& words, const Pickables& others,
                              const std::function<std::string(const std::shared_ptr<IPickable>&)>& note) {
  std::string what = std::string("There is no ") + (words.playersOnly ? "player" : "player or team") + " '" +
                     words.who + "'";
  if (!words.team.empty()) what += " of team " + words.team;
  if (!words.position.empty())
    what += (words.team.empty() ? " at position " : ", position ") + words.position;
  std::string hint;
  if (!others.empty()) {
    hint = "There is\n" + ListOf(others, note);
  } else if (WholeNumber(words.who)) {
    hint = "An id has a letter: P" + words.who + " is a player, T" + words.who + " a team.";
  } else if (!words.retired && !BestOf(Found(league, words, /*skipRetired=*/false), words.who).empty()) {
    what += " who plays";
    hint = "'--retired' looks among retired players too.";
  } else {
    hint = Suggestion(league, words);
  }
  throw Failure(FailureKind::Refused, what + ".", hint);
}

}  // namespace

PickableFacts FactsOf(const IPickable& pickable) {
  if (const auto* player = dynamic_cast<const HLIData::IPlayerInfo*>(&pickable))
    return FactsOfPlayer(*player);
  if (const auto* team = dynamic_cast<const HLIData::ITeamInfo*>(&pickable)) return FactsOfTeam(*team);
  PickableFacts facts;
  facts.id = std::to_string(pickable.PickID());
  facts.lastName = facts.name = pickable.PickName();
  return facts;
}

std::string PickableText(const PickableFacts& facts) {
  std::string text = Printable(facts.name) + " (" + facts.id;
  if (!facts.team.empty()) text += ", " + facts.team;
  if (!facts.position.empty()) text += ", " + facts.position;
  return text + ")";
}

std::shared_ptr<IPickable> FindPickable(
    League& league, const PickableWords& words,
    const std::function<std::string(const std::shared_ptr<IPickable>&)>& note) {
  RequireKnown(league, "team", words.team, league.Service().GetTeams());
  RequireKnown(league, "position", words.position, league.Service().GetPlayerPositions());
  if (const auto id = IDIn(words)) {
    const auto found = ByID(league, *id);
    RequireAgrees(*found, words);
    return found;
  }
  if (WordsOf(words.who).empty())
    throw Failure(FailureKind::WrongUsage, "Say whom: a name, or an id such as P17.");
  const Pickables found = Found(league, words, /*skipRetired=*/!words.retired);
  const Pickables named = BestOf(found, words.who);
  const Pickables meant = BestOf(OfTeamAndPosition(found, words), words.who);
  if (meant.empty()) RaiseNobody(league, words, named, note);
  if (meant.size() == 1) return meant.front();
  throw Failure(
      FailureKind::Refused, "More than one may be meant by '" + words.who + "'.",
      ListOf(meant, note) + (words.playersOnly ? "\nSay which by its id."
                                               : "\nSay which by id, or with --team and --position."));
}

}  // namespace HLLeague
