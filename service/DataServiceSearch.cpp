// Search by name.

#include <vector>

#include "records/HLStringUtils.h"
#include "records/ManagerTmplInfo.h"
#include "records/PlayerInfo.h"
#include "records/PositionInfo.h"
#include "records/PrizeTmplInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "records/TeamInfo.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"

namespace HLDataSrvc {

using HLIData::IPickable;
using HLIData::KeyedCollection;
using HLIData::SearchType;

namespace {

using Found = KeyedCollection<IPickable>;

// What the user typed goes into the statements as it is. An apostrophe ends its literal and breaks the
// statement, deliberately; the engine runs select statements and nothing else.

/// `column` begins with `text`.
std::string Begins(const std::string& column, const std::string& text) {
  return column + " like '" + text + "*'";
}

/// The last name begins with one word, the first name with the other; `operation` joins the two.
std::string Names(const std::string& last, const char* operation, const std::string& first) {
  return "((" + Begins("[last name]", last) + ")" + operation + "(" + Begins("[first name]", first) + "))";
}

/// One word is looked for in both names. Of several each is taken with the one after it, the last with the
/// first, once as last and first name and once the other way round; so two words give every pair twice.
std::string SelectPlayers(const std::vector<std::string>& words, bool skipRetired) {
  std::string statement = "select [id] from [player info] where (";
  if (words.size() == 1) {
    statement += Names(words[0], " or ", words[0]);
  } else {
    for (std::size_t i = 0; i < words.size(); ++i) {
      const std::string& word = words[i];
      const std::string& next = words[(i + 1) % words.size()];
      if (i > 0) statement += " or ";
      statement += Names(word, " and ", next) + " or " + Names(next, " and ", word);
    }
  }
  statement += ")";
  if (skipRetired) statement += " and ([is retired] = false)";
  return statement + " order by [first name], [last name], [id]";
}

std::string SelectTeams(const std::string& text) {
  return "select [id] from [team info] where " + Begins("[name]", text) + " or " +
         Begins("[nickname]", text) + " or " + Begins("[abbr]", text) +
         " order by [name], [nickname], [abbr], [id]";
}

std::string SelectManagers(const std::string& text) {
  return "select [id] from [manager info] where " + Begins("[last name]", text) + " or " +
         Begins("[first name]", text) + " order by [first name], [last name], [id]";
}

std::string SelectManagersPlaying(const std::string& text, std::int32_t seasonID) {
  return "select m.[id] from [playing info] p inner join [manager info] m on p.[manager id] = m.[id] "
         "where (p.[season id] = " +
         std::to_string(seasonID) + ") and (" + Begins("m.[last name]", text) + " or " +
         Begins("m.[first name]", text) + ") order by m.[first name], m.[last name], m.[id]";
}

std::string SelectPrizes(const std::string& text) {
  return "select [id] from [prize info] where " + Begins("[desc]", "*" + text) + " order by [desc], [id]";
}

std::string SelectPrizesPutUp(const std::string& text, std::int32_t seasonID) {
  return "select p.[id] from [money distribution info] m inner join [prize info] p on m.[prize id] = p.[id] "
         "where (m.[season id] = " +
         std::to_string(seasonID) + ") and (" + Begins("p.[desc]", "*" + text) +
         ") order by p.[desc], p.[id]";
}

std::string SelectPositions(const std::string& text) {
  return "select [id] from [position info] where " + Begins("[desc]", "*" + text) + " order by [desc], [id]";
}

}  // namespace

std::shared_ptr<Found> DataService::Search(SearchType searchType, const std::string& searchText,
                                           bool curSeasonOnly, bool skipRetiredPlayers) {
  switch (searchType) {
    case SearchType::PlayersAndTeams:
      return SearchPlayersAndTeams(searchText, skipRetiredPlayers);
    case SearchType::Managers:
      return SearchManagers(searchText, curSeasonOnly);
    case SearchType::Prizes:
      return SearchPrizes(searchText, curSeasonOnly);
    case SearchType::Positions:
      return SearchPositions(searchText);
  }
  return {};
}

std::shared_ptr<Found> DataService::SearchPlayersAndTeams(const std::string& text, bool skipRetired) {
  return ShowSearch("Error in searching players/teams.", [&](Found& found) {
    const auto words = HLStringUtils::SplitWords(text);
    Rows::ForEach(Database(), SelectPlayers(words, skipRetired),
                  [&](jet::Recordset& row) { found.Add(PlayerByID(Rows::LeadingInt32(row, "id"))); });
    Rows::ForEach(Database(), SelectTeams(text),
                  [&](jet::Recordset& row) { found.Add(TeamByID(Rows::LeadingInt32(row, "id"))); });
  });
}

std::shared_ptr<Found> DataService::SearchManagers(const std::string& text, bool curSeasonOnly) {
  return ShowSearch("Error in searching managers.", [&](Found& found) {
    const std::string statement =
        curSeasonOnly ? SelectManagersPlaying(text, m_currentSeasonID) : SelectManagers(text);
    Rows::ForEach(Database(), statement, [&](jet::Recordset& row) {
      found.Add(OwnRecord<ManagerTmplInfo>(ManagerTmplByID(Rows::LeadingInt32(row, "id")), "A manager"));
    });
  });
}

std::shared_ptr<Found> DataService::SearchPrizes(const std::string& text, bool curSeasonOnly) {
  return ShowSearch("Error in searching prizes.", [&](Found& found) {
    const std::string statement =
        curSeasonOnly ? SelectPrizesPutUp(text, m_currentSeasonID) : SelectPrizes(text);
    Rows::ForEach(Database(), statement, [&](jet::Recordset& row) {
      const auto prizes = GetPrizeTmpls();
      const std::int32_t id = Rows::LeadingInt32(row, "id");
      const auto prize = LookUpIn(
          m_shown.prizes, [&] { return Required(prizes, "The prizes are not loaded.").Item(RecordKey(id)); });
      found.Add(OwnRecord<PrizeTmplInfo>(prize, "A prize"));
    });
  });
}

std::shared_ptr<Found> DataService::SearchPositions(const std::string& text) {
  return ShowSearch("Error in searching positions.", [&](Found& found) {
    Rows::ForEach(Database(), SelectPositions(text), [&](jet::Recordset& row) {
      const auto positions = GetPlayerPositions();
      const std::int32_t id = Rows::LeadingInt32(row, "id");
      const auto position = LookUpIn(m_shown.positions, [&] {
        return Required(positions, "The positions are not loaded.").Item(RecordKey(id));
      });
      found.Add(OwnRecord<PositionInfo>(position, "A position"));
    });
  });
}

template <typename Work>
std::shared_ptr<Found> DataService::ShowSearch(const char* sentence, Work&& work) {
  return Trap<std::shared_ptr<Found>>(sentence, [&](std::shared_ptr<Found>& result) {
    auto found = std::make_shared<Found>();
    work(*found);
    result = std::move(found);
  });
}

}  // namespace HLDataSrvc
