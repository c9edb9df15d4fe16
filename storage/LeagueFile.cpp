#include "storage/LeagueFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "jet/Error.h"
#include "jet/Schema.h"
#include "jet/dao/DBEngine.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "platform/Paths.h"
#include "storage/FileInMaking.h"
#include "storage/HLServiceUtils.h"
#include "storage/Schema.h"

namespace HLDataSrvc {
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
  namespace S = Schema;
  return {
      {S::Settings::kTable,
       {Integer(S::Settings::kID), Integer(S::Settings::kCurrentSeasonID)},
       {PrimaryKey({{S::Settings::kID}})}},
      {S::Season::kTable,
       {Integer(S::Season::kID), IntegerFromZero(S::Season::kYear), IntegerFromZero(S::Season::kNoOfPlayers),
        IntegerFromZero(S::Season::kNoOfRounds), IntegerFromZero(S::Season::kMoneyContribution),
        IntegerFromZero(S::Season::kNoOfRegularWeeks), IntegerFromZero(S::Season::kTotalNoOfWeeks),
        YesNoFromFalse(S::Season::kIsRankingLocked), YesNoFromFalse(S::Season::kIsSeasonLocked),
        YesNoFromFalse(S::Season::kIsDraftLocked), YesNoFromFalse(S::Season::kHasSeasonStarted)},
       {PrimaryKey({{S::Season::kID}})}},
      {S::Position::kTable,
       {Integer(S::Position::kID), Text(S::Position::kAbbr, kAbbrLength),
        Text(S::Position::kDesc, kDescLength)},
       {PrimaryKey({{S::Position::kID}})}},
      {S::Team::kTable,
       {Integer(S::Team::kID), Text(S::Team::kAbbr, kAbbrLength), Text(S::Team::kName, kNameLength),
        Text(S::Team::kNickname, kNameLength), Integer(S::Team::kPositionID)},
       {PrimaryKey({{S::Team::kID}}), Referring(S::Team::kPositionID)}},
      {S::Player::kTable,
       {Integer(S::Player::kID), Text(S::Player::kFirstName, kNameLength),
        Text(S::Player::kLastName, kNameLength), Integer(S::Player::kPositionID), Integer(S::Player::kTeamID),
        YesNo(S::Player::kIsRetired)},
       {PrimaryKey({{S::Player::kID}}), Referring(S::Player::kPositionID), Referring(S::Player::kTeamID)}},
      {S::Manager::kTable,
       {Integer(S::Manager::kID), Text(S::Manager::kFirstName, kNameLength),
        Text(S::Manager::kLastName, kNameLength)},
       {PrimaryKey({{S::Manager::kID}})}},
      {S::PrizeType::kTable,
       {Integer(S::PrizeType::kTypeID), Text(S::PrizeType::kTypeName, kNameLength)},
       {PrimaryKey({{S::PrizeType::kTypeID}})}},
      {S::Prize::kTable,
       {Integer(S::Prize::kID), Text(S::Prize::kDesc, kDescLength), Integer(S::Prize::kTypeID)},
       {PrimaryKey({{S::Prize::kID}}), Referring(S::Prize::kTypeID)}},
      {S::Playing::kTable,
       {Integer(S::Playing::kSeasonID), Integer(S::Playing::kManagerID), YesNo(S::Playing::kFeePaid),
        Integer(S::Playing::kRanking)},
       {PrimaryKey({{S::Playing::kSeasonID}, {S::Playing::kManagerID}}), Referring(S::Playing::kSeasonID),
        Referring(S::Playing::kManagerID)}},
      {S::MoneyDistribution::kTable,
       {Integer(S::MoneyDistribution::kSeasonID), Integer(S::MoneyDistribution::kPrizeID),
        Integer(S::MoneyDistribution::kMoney)},
       {Referring(S::MoneyDistribution::kSeasonID), Referring(S::MoneyDistribution::kPrizeID)}},
      {S::Draft::kTable,
       {Integer(S::Draft::kSeasonID), Integer(S::Draft::kDraftNo), Integer(S::Draft::kManagerID),
        Integer(S::Draft::kPlayerID), Integer(S::Draft::kTeamID)},
       {PrimaryKey({{S::Draft::kSeasonID}, {S::Draft::kDraftNo}}), Referring(S::Draft::kSeasonID),
        Referring(S::Draft::kManagerID), Referring(S::Draft::kPlayerID), Referring(S::Draft::kTeamID)}},
      {S::Winning::kTable,
       {Integer(S::Winning::kID), Integer(S::Winning::kSeasonID), Integer(S::Winning::kPrizeID),
        Integer(S::Winning::kManagerID), Integer(S::Winning::kWeek)},
       {PrimaryKey({{S::Winning::kID}}), Referring(S::Winning::kSeasonID), Referring(S::Winning::kPrizeID),
        Referring(S::Winning::kManagerID)}},
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
    {Schema::Player::kTable, Schema::Player::kPositionID, Schema::Position::kTable},
    {Schema::Team::kTable, Schema::Team::kPositionID, Schema::Position::kTable},
    {Schema::Playing::kTable, Schema::Playing::kManagerID, Schema::Manager::kTable},
    {Schema::Draft::kTable, Schema::Draft::kManagerID, Schema::Manager::kTable},
    {Schema::Draft::kTable, Schema::Draft::kPlayerID, Schema::Player::kTable},
    {Schema::Winning::kTable, Schema::Winning::kManagerID, Schema::Manager::kTable},
    {Schema::Winning::kTable, Schema::Winning::kPrizeID, Schema::Prize::kTable},
    {Schema::MoneyDistribution::kTable, Schema::MoneyDistribution::kPrizeID, Schema::Prize::kTable},
};

void MakeSchema(jet::Database& database) {
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

void AddSettingsRow(jet::Database& database) {
  const auto settings =
      database.OpenRecordset(std::string("select * from [") + Schema::Settings::kTable + "]");
  settings->AddNew();
  settings->Fields(Schema::Settings::kID).Value(std::int32_t{1});
  settings->Fields(Schema::Settings::kCurrentSeasonID).Value(std::int32_t{0});
  settings->Update();
  settings->Close();
}

// Raises the engine's error when someone has the file open. Other reasons for which it does not open are no
// obstacle to replacing it.
void RefuseFileInUse(const std::string& path) {
  try {
    HLServiceUtils::Engine().OpenDatabase(path, /*exclusive=*/true, /*readOnly=*/false,
                                          HLServiceUtils::GetConnectString());
  } catch (const jet::Error& error) {
    using enum jet::ErrorNumber;
    if (error.Number() == FileInUse || error.Number() == FileHeldExclusively) throw;
  }
}

}  // namespace

void CreateLeagueFile(const std::string& path, const LeagueFileOptions& options) {
  std::error_code unknown;  // what cannot be looked at cannot be made either: the engine says why
  if (std::filesystem::exists(ToSystemPath(path), unknown)) {
    if (!options.overwrite)
      throw jet::Error(jet::ErrorNumber::ObjectExists, "File " + path + " is there already.");
    RefuseFileInUse(path);
  }
  FileInMaking file(path);
  const auto database = HLServiceUtils::Engine().CreateDatabase(
      file.Path(), {.password = HLServiceUtils::kDatabasePassword, .durability = jet::Durability::Off});
  MakeSchema(*database);
  AddSettingsRow(*database);
  if (options.fill) options.fill(*database);
  database->Close();
  file.PutInPlace();
}

}  // namespace HLDataSrvc
