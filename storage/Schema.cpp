#include "storage/Schema.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "jet/TableSpec.h"
#include "jet/dao/Database.h"

namespace HLDataSrvc::Schema {
namespace {

using jet::ColumnSpec;
using jet::ColumnType;
using jet::IndexSpec;
using jet::TableSpec;

constexpr std::uint16_t kAbbrLength = 10;
constexpr std::uint16_t kNameLength = 50;
constexpr std::uint16_t kDescLength = 100;

ColumnSpec Column(const char* name, ColumnType type, std::optional<std::string> defaultValue = {}) {
  ColumnSpec column;
  column.name = name;
  column.type = type;
  column.defaultValue = std::move(defaultValue);
  return column;
}

ColumnSpec Integer(const char* name) {
  return Column(name, ColumnType::Long);
}

ColumnSpec IntegerFromZero(const char* name) {
  return Column(name, ColumnType::Long, "0");
}

ColumnSpec YesNo(const char* name) {
  return Column(name, ColumnType::YesNo);
}

ColumnSpec YesNoFromFalse(const char* name) {
  return Column(name, ColumnType::YesNo, "False");
}

ColumnSpec Text(const char* name, std::uint16_t length) {
  ColumnSpec column = Column(name, ColumnType::Text);
  column.length = length;
  return column;
}

IndexSpec PrimaryKey(std::vector<jet::IndexColumn> columns) {
  return {
      .name = "PrimaryKey", .columns = std::move(columns), .primary = true, .unique = true, .required = true};
}

// A column that refers to another table has an index of the column's name.
IndexSpec Referring(const char* column) {
  return {.name = column, .columns = {{column}}};
}

std::vector<TableSpec> Tables() {
  return {
      {Settings::kTable,
       {Integer(Settings::kID), Integer(Settings::kCurrentSeasonID)},
       {PrimaryKey({{Settings::kID}})}},
      {Season::kTable,
       {Integer(Season::kID), IntegerFromZero(Season::kYear), IntegerFromZero(Season::kNoOfPlayers),
        IntegerFromZero(Season::kNoOfRounds), IntegerFromZero(Season::kMoneyContribution),
        IntegerFromZero(Season::kNoOfRegularWeeks), IntegerFromZero(Season::kTotalNoOfWeeks),
        YesNoFromFalse(Season::kIsRankingLocked), YesNoFromFalse(Season::kIsSeasonLocked),
        YesNoFromFalse(Season::kIsDraftLocked), YesNoFromFalse(Season::kHasSeasonStarted)},
       {PrimaryKey({{Season::kID}})}},
      {Position::kTable,
       {Integer(Position::kID), Text(Position::kAbbr, kAbbrLength), Text(Position::kDesc, kDescLength)},
       {PrimaryKey({{Position::kID}})}},
      {Team::kTable,
       {Integer(Team::kID), Text(Team::kAbbr, kAbbrLength), Text(Team::kName, kNameLength),
        Text(Team::kNickname, kNameLength), Integer(Team::kPositionID)},
       {PrimaryKey({{Team::kID}}), Referring(Team::kPositionID)}},
      {Player::kTable,
       {Integer(Player::kID), Text(Player::kFirstName, kNameLength), Text(Player::kLastName, kNameLength),
        Integer(Player::kPositionID), Integer(Player::kTeamID), YesNo(Player::kIsRetired)},
       {PrimaryKey({{Player::kID}}), Referring(Player::kPositionID), Referring(Player::kTeamID)}},
      {Manager::kTable,
       {Integer(Manager::kID), Text(Manager::kFirstName, kNameLength), Text(Manager::kLastName, kNameLength)},
       {PrimaryKey({{Manager::kID}})}},
      {PrizeType::kTable,
       {Integer(PrizeType::kTypeID), Text(PrizeType::kTypeName, kNameLength)},
       {PrimaryKey({{PrizeType::kTypeID}})}},
      {Prize::kTable,
       {Integer(Prize::kID), Text(Prize::kDesc, kDescLength), Integer(Prize::kTypeID)},
       {PrimaryKey({{Prize::kID}}), Referring(Prize::kTypeID)}},
      {Playing::kTable,
       {Integer(Playing::kSeasonID), Integer(Playing::kManagerID), YesNo(Playing::kFeePaid),
        Integer(Playing::kRanking)},
       {PrimaryKey({{Playing::kSeasonID}, {Playing::kManagerID}}), Referring(Playing::kSeasonID),
        Referring(Playing::kManagerID)}},
      {MoneyDistribution::kTable,
       {Integer(MoneyDistribution::kSeasonID), Integer(MoneyDistribution::kPrizeID),
        Integer(MoneyDistribution::kMoney)},
       {PrimaryKey({{MoneyDistribution::kSeasonID}, {MoneyDistribution::kPrizeID}}),
        Referring(MoneyDistribution::kSeasonID), Referring(MoneyDistribution::kPrizeID)}},
      {Draft::kTable,
       {Integer(Draft::kSeasonID), Integer(Draft::kDraftNo), Integer(Draft::kManagerID),
        Integer(Draft::kPlayerID), Integer(Draft::kTeamID)},
       {PrimaryKey({{Draft::kSeasonID}, {Draft::kDraftNo}}), Referring(Draft::kSeasonID),
        Referring(Draft::kManagerID), Referring(Draft::kPlayerID), Referring(Draft::kTeamID)}},
      {Winning::kTable,
       {Integer(Winning::kID), Integer(Winning::kSeasonID), Integer(Winning::kPrizeID),
        Integer(Winning::kManagerID), Integer(Winning::kWeek)},
       {PrimaryKey({{Winning::kID}}), Referring(Winning::kSeasonID), Referring(Winning::kPrizeID),
        Referring(Winning::kManagerID)}},
  };
}

struct Reference {
  const char* table;
  const char* column;
  const char* parentTable;
};

// What is enforced: that rows which others refer to cannot go is how deleting master records finds out that
// it may not. Seasons, teams and prize types are left out: the rows of a season may be stored before the
// season has a row.
constexpr Reference kEnforced[] = {
    {Player::kTable, Player::kPositionID, Position::kTable},
    {Team::kTable, Team::kPositionID, Position::kTable},
    {Playing::kTable, Playing::kManagerID, Manager::kTable},
    {Draft::kTable, Draft::kManagerID, Manager::kTable},
    {Draft::kTable, Draft::kPlayerID, Player::kTable},
    {Winning::kTable, Winning::kManagerID, Manager::kTable},
    {Winning::kTable, Winning::kPrizeID, Prize::kTable},
    {MoneyDistribution::kTable, MoneyDistribution::kPrizeID, Prize::kTable},
};

}  // namespace

void CreateTables(jet::Database& database) {
  for (const TableSpec& table : Tables())
    database.CreateTable(table);
  for (const Reference& reference : kEnforced) {
    database.CreateRelation({.name = std::string(reference.parentTable) + reference.table,
                             .table = reference.table,
                             .columns = {reference.column},
                             .parentTable = reference.parentTable,
                             .parentColumns = {"id"}});
  }
}

}  // namespace HLDataSrvc::Schema
