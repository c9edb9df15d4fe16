#include "storage/LeagueTables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <set>
#include <stdexcept>

#include "jet/Value.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "storage/Schema.h"

namespace HLDataSrvc::LeagueTables {
namespace {

namespace S = Schema;

bool IsNumber(const Column& column) {
  return column.use == Use::ID || column.use == Use::Number;
}

std::size_t NumberCount(const Table& table) {
  return static_cast<std::size_t>(std::count_if(table.columns.begin(), table.columns.end(), IsNumber));
}

std::string InBrackets(const std::string& name) {
  return "[" + name + "]";
}

std::string NumberText(const Number& number) {
  return number ? std::to_string(*number) : "Null";
}

/// The number that a value holds, rounded; none if it does not fit in 32 bits.
Number Rounded(const jet::Value& value) {
  if (const auto* whole = value.As<std::int32_t>()) return *whole;
  const std::string text = value.ToText();
  double number = std::numeric_limits<double>::quiet_NaN();
  std::from_chars(text.data(), text.data() + text.size(), number);
  number = std::nearbyint(number);
  if (!(number >= std::numeric_limits<std::int32_t>::min() &&
        number <= std::numeric_limits<std::int32_t>::max()))
    return {};
  return static_cast<std::int32_t>(number);
}

std::string SelectNumbers(const Table& table) {
  std::string columns;
  for (std::size_t i = 0; i < NumberCount(table); ++i)
    columns += (i == 0 ? "" : ", ") + InBrackets(table.columns[i].name);
  return "select " + columns + " from " + InBrackets(table.name);
}

Row KeyOf(const Table& table, const Row& row) {
  return {row.begin(), row.begin() + static_cast<std::ptrdiff_t>(table.keyLength)};
}

/// The current row, every column of it, in a form in which equal rows are equal.
std::string WholeRow(jet::Recordset& rows) {
  std::string text;
  for (std::size_t i = 0; i < rows.FieldCount(); ++i) {
    const jet::Value value = rows.Fields(i).Value();
    const std::string content = value.ToText();
    text += value.IsNull() ? "-" : std::to_string(content.size()) + ":" + content;
  }
  return text;
}

std::shared_ptr<jet::Recordset> RowsWithKey(jet::Database& database, const Table& table, const Row& key) {
  return database.OpenRecordset("select * from " + InBrackets(table.name) + " where " + Where(table, key));
}

}  // namespace

const std::vector<Table>& All() {
  using enum Use;
  static const std::vector<Table> tables{
      {S::Settings::kTable, 1, {{S::Settings::kID, ID}, {S::Settings::kCurrentSeasonID, ID}}},
      {S::Season::kTable,
       1,
       {{S::Season::kID, ID},
        {S::Season::kYear, Number},
        {S::Season::kNoOfPlayers, Number},
        {S::Season::kNoOfRounds, Number},
        {S::Season::kMoneyContribution, Number},
        {S::Season::kNoOfRegularWeeks, Number},
        {S::Season::kTotalNoOfWeeks, Number},
        {S::Season::kIsRankingLocked, YesNo},
        {S::Season::kIsSeasonLocked, YesNo},
        {S::Season::kIsDraftLocked, YesNo},
        {S::Season::kHasSeasonStarted, YesNo}}},
      {S::Manager::kTable,
       1,
       {{S::Manager::kID, ID}, {S::Manager::kFirstName, Text}, {S::Manager::kLastName, Text}}},
      {S::Position::kTable,
       1,
       {{S::Position::kID, ID}, {S::Position::kAbbr, Text}, {S::Position::kDesc, Text}}},
      {S::Team::kTable,
       1,
       {{S::Team::kID, ID},
        {S::Team::kPositionID, ID},
        {S::Team::kAbbr, Text},
        {S::Team::kName, Text},
        {S::Team::kNickname, Text}}},
      {S::Player::kTable,
       1,
       {{S::Player::kID, ID},
        {S::Player::kPositionID, ID},
        {S::Player::kTeamID, ID},
        {S::Player::kFirstName, Text},
        {S::Player::kLastName, Text},
        {S::Player::kIsRetired, YesNo}}},
      {S::PrizeType::kTable, 1, {{S::PrizeType::kTypeID, ID}, {S::PrizeType::kTypeName, Text}}},
      {S::Prize::kTable, 1, {{S::Prize::kID, ID}, {S::Prize::kTypeID, ID}, {S::Prize::kDesc, Text}}},
      {S::Playing::kTable,
       2,
       {{S::Playing::kSeasonID, ID},
        {S::Playing::kManagerID, ID},
        {S::Playing::kRanking, Number},
        {S::Playing::kFeePaid, YesNo}}},
      {S::MoneyDistribution::kTable,
       2,
       {{S::MoneyDistribution::kSeasonID, ID},
        {S::MoneyDistribution::kPrizeID, ID},
        {S::MoneyDistribution::kMoney, Number}}},
      {S::Draft::kTable,
       2,
       {{S::Draft::kSeasonID, ID},
        {S::Draft::kDraftNo, ID},
        {S::Draft::kManagerID, ID},
        {S::Draft::kPlayerID, ID},
        {S::Draft::kTeamID, ID}}},
      {S::Winning::kTable,
       1,
       {{S::Winning::kID, ID},
        {S::Winning::kSeasonID, ID},
        {S::Winning::kPrizeID, ID},
        {S::Winning::kManagerID, ID},
        {S::Winning::kWeek, Number}}},
  };
  return tables;
}

const Table& Named(const std::string& name) {
  for (const Table& table : All()) {
    if (name == table.name) return table;
  }
  throw std::logic_error("The league has no table " + name + ".");
}

Rows Read(jet::Database& database, const Table& table) {
  Rows result;
  const std::size_t count = NumberCount(table);
  const auto rows = database.OpenRecordset(SelectNumbers(table));
  for (; !rows->Eof(); rows->MoveNext()) {
    Row row(count);
    std::vector<std::string> tooLarge;
    for (std::size_t i = 0; i < count; ++i) {
      const jet::Value value = rows->Fields(i).Value();
      if (value.IsNull()) continue;
      row[i] = Rounded(value);
      if (row[i]) continue;
      row[i] = 0;
      tooLarge.push_back(": " + InBrackets(table.columns[i].name) + " is " + value.ToText() +
                         ", which is not a 32-bit number.");
    }
    for (const std::string& text : tooLarge)
      result.tooLarge.push_back(KeyText(table, row) + text);
    result.rows.push_back(std::move(row));
  }
  rows->Close();
  std::sort(result.rows.begin(), result.rows.end());
  for (std::size_t i = 1; i < result.rows.size(); ++i) {
    const Row key = KeyOf(table, result.rows[i]);
    const bool isRepeated = key == KeyOf(table, result.rows[i - 1]);
    if (isRepeated && (result.repeatedKeys.empty() || result.repeatedKeys.back() != key))
      result.repeatedKeys.push_back(key);
  }
  result.rows.erase(std::unique(result.rows.begin(), result.rows.end()), result.rows.end());
  return result;
}

std::string Where(const Table& table, const Row& numbers) {
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    text += (i == 0 ? "" : " and ") + InBrackets(table.columns[i].name) +
            (numbers[i] ? " = " + std::to_string(*numbers[i]) : " is null");
  }
  return text;
}

std::string KeyText(const Table& table, const Row& row) {
  std::string text = InBrackets(table.name);
  for (std::size_t i = 0; i < table.keyLength; ++i)
    text += std::string(", ") + table.columns[i].name + " " + NumberText(row[i]);
  return text;
}

Repeats CountRepeats(jet::Database& database, const Table& table, const Row& key) {
  Repeats count;
  std::set<std::string> different;
  const auto rows = RowsWithKey(database, table, key);
  for (; !rows->Eof(); rows->MoveNext()) {
    ++count.rows;
    different.insert(WholeRow(*rows));
  }
  rows->Close();
  count.repeats = count.rows - different.size();
  return count;
}

void DeleteRepeats(jet::Database& database, const Table& table, const Row& key) {
  std::set<std::string> kept;
  const auto rows = RowsWithKey(database, table, key);
  for (; !rows->Eof(); rows->MoveNext()) {
    if (!kept.insert(WholeRow(*rows)).second) rows->Delete();
  }
  rows->Close();
}

}  // namespace HLDataSrvc::LeagueTables
