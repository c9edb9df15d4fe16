#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "jet/Value.h"
#include "jet/dao/Database.h"
#include "jet/dao/Recordset.h"
#include "records/Conversions.h"

/// How loaders read the columns of a recordset's current row. A value is always read as its text, so that a
/// Null is an empty text; the function that a loader calls decides what that means. All raise
/// UnknownField for a column that the recordset does not have; the errors of conversions name table, row and
/// column.
namespace HLDataSrvc::Rows {

/// The text of a column.
inline std::string Text(jet::Recordset& row, std::string_view column) {
  return row.Fields(column).Value().ToText();
}

/// Lenient: the leading number of the text, so that a Null is 0. Raises Overflow.
std::int32_t LeadingInt32(jet::Recordset& row, std::string_view column);

/// Strict: the number that is the whole text, so that a Null is an error. Raises TypeMismatch, Overflow.
std::int32_t WholeInt32(jet::Recordset& row, std::string_view column);

/// A yes/no column; a Null is false. Raises TypeMismatch for a text that is neither.
bool Boolean(jet::Recordset& row, std::string_view column);

/// Opens a select statement, hands every row to `work(recordset)` in turn, and closes it.
template <typename Work>
void ForEach(jet::Database& database, const std::string& statement, Work&& work) {
  const auto rows = database.OpenRecordset(statement);
  for (; !rows->Eof(); rows->MoveNext())
    work(*rows);
  rows->Close();
}

/// Deletes every row from the current one on.
inline void DeleteAll(jet::Recordset& rows) {
  for (; !rows.Eof(); rows.MoveNext())
    rows.Delete();
}

/// The statement that asks for the highest identifier of a table.
inline std::string SelectHighestID(const std::string& table) {
  return "select max(id) as highestid from [" + table + "]";
}

/// The identifier for a new row, from the rows of SelectHighestID, which are closed: one more than the
/// highest there is. A maximum that cannot be read, as that of an empty table, counts as 0. Raises Overflow.
std::int32_t NextID(jet::Recordset& highest);

}  // namespace HLDataSrvc::Rows
