#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "HLIData/ISeasonInfo.h"
#include "jet/dao/Database.h"

namespace HLDataSrvc::test {

/// Rows of a table in one form, independent of the reader: a sorted line for each, the values in the order of
/// the columns with `|` between; Null is empty, yes/no 1 and 0.
using Lines = std::vector<std::string>;
/// Rows by table.
using Tables = std::map<std::string, Lines>;

inline std::string FieldText(const std::string& text) {
  return text;
}
inline std::string FieldText(bool value) {
  return value ? "1" : "0";
}
inline std::string FieldText(std::int32_t number) {
  return std::to_string(number);
}
/// A number of which 0 is stored as Null.
inline std::string OrNull(std::int32_t number) {
  return number == 0 ? "" : std::to_string(number);
}
/// A row of these values.
template <typename First, typename... Others>
std::string Line(const First& first, const Others&... others) {
  std::string line = FieldText(first);
  ((line += "|" + FieldText(others)), ...);
  return line;
}
/// Lines in the form in which rows are compared.
Lines Sorted(Lines lines);

Tables RowsOf(jet::Database& database);
/// What an independent reader found in the fixture league.mdb.
Lines ExpectedRows(const std::string& table);
/// What mdb-export finds in a file; see HasMdbExport.
Lines ExportedRows(const std::string& path, const std::string& table);
/// The rows that a season would be stored as: [season info], [playing info], [money distribution info],
/// [winning info], [draft info]. Picks without a manager have none.
Tables RowsOf(const HLIData::ISeasonInfo& season);
/// Those rows of a table that begin with a value; of [winning info] those with it in the second column.
Lines RowsOfSeason(const Tables& tables, const std::string& table, std::int32_t seasonID);

void AddRows(jet::Database& database, const std::string& table, const Lines& rows);

/// A small league file: seasons 1 (2024, the current one, 2 x 2, three picks, money and winnings) and 2
/// (2023, 2 x 1, a manager without rank), two teams, four players, and the rows added. `isLoose`: without
/// keys, indexes and relationships, so that rows can contradict each other.
std::vector<std::byte> SmallLeague(bool isLoose = false, const Tables& added = {});

}  // namespace HLDataSrvc::test
