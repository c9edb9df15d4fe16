#include "HLLeague/NameIndex.h"

#include "HLLeague/Failure.h"
#include "HLLeague/Find.h"
#include "league/Nearest.h"
#include "league/Numbers.h"
#include "league/Utf8.h"

namespace HLLeague {
namespace {

constexpr std::size_t kListedAtMost = 12;

/// Raises Failure for a list that the service could not load.
template <typename Records>
const Records& Loaded(League& league, const std::shared_ptr<Records>& records) {
  league.RaiseShownMessages();
  if (!records) throw Failure(FailureKind::Refused, "The league's records could not be loaded.");
  return *records;
}

}  // namespace

void NameIndex::Add(std::int32_t id, const std::string& shortName, const std::vector<std::string>& names) {
  if (id < 1) return;
  m_shown[id] = !shortName.empty() ? shortName : names.empty() ? std::string() : names.front();
  if (!shortName.empty()) m_byShortName[LowerCase(shortName)].push_back(id);
  for (const std::string& name : names) {
    auto& ids = m_byName[LowerCase(name)];
    if (!name.empty() && (ids.empty() || ids.back() != id)) ids.push_back(id);
  }
}

std::int32_t NameIndex::IDOf(const std::string& word) const {
  const auto id = WholeNumber(word);
  if (id && m_shown.contains(*id)) return *id;
  const std::string sought = LowerCase(word);
  for (const IDs* ids : {&m_byShortName, &m_byName}) {
    const auto found = ids->find(sought);
    if (found != ids->end() && !found->second.empty()) return OnlyOne(word, found->second);
  }
  std::vector<std::string> known;
  for (const auto& [each, shown] : m_shown)
    known.push_back(shown);
  std::string hint;
  if (known.size() <= kListedAtMost) {
    for (const std::string& name : known)
      hint += (hint.empty() ? "There are " : ", ") + Printable(name);
    hint = known.empty() ? "The league has none." : hint + ".";
  } else if (const std::string nearest = NearestOf(word, known); !nearest.empty()) {
    hint = "Did you mean '" + Printable(nearest) + "'?";
  }
  throw Failure(FailureKind::Refused,
                "There is no " + m_kind + (id ? " with the id " + word : " '" + word + "'") + ".", hint);
}

std::string NameIndex::NameOf(std::int32_t id) const {
  const auto shown = m_shown.find(id);
  return shown == m_shown.end() || shown->second.empty() ? std::to_string(id) : Printable(shown->second);
}

std::int32_t NameIndex::OnlyOne(const std::string& word, const std::vector<std::int32_t>& ids) const {
  if (ids.size() == 1) return ids.front();
  std::string list;
  for (const std::int32_t id : ids)
    list += (list.empty() ? "Say which by its id: " : ", ") + std::to_string(id);
  throw Failure(FailureKind::Refused, "More than one " + m_kind + " may be meant by '" + word + "'.",
                list + ".");
}

NameIndex PositionNames(League& league) {
  NameIndex names("position");
  for (const auto& position : Loaded(league, league.Service().GetPlayerPositions()))
    names.Add(position->ID(), position->Abbr(), {position->Desc()});
  return names;
}

NameIndex TeamNames(League& league) {
  NameIndex names("team");
  for (const auto& team : Loaded(league, league.Service().GetTeams()))
    names.Add(team->ID(), team->Abbr(),
              {FullName(team->Name(), team->Nickname()), team->Name(), team->Nickname()});
  return names;
}

NameIndex PrizeTypeNames(League& league) {
  NameIndex names("type of prize");
  for (const auto& type : Loaded(league, league.Service().GetPrizeTypes()))
    names.Add(type->ID(), {}, {type->Name()});
  return names;
}

}  // namespace HLLeague
