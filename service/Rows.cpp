#include "service/Rows.h"

#include <cstddef>
#include <exception>

#include "HLIData/Error.h"

namespace HLDataSrvc::Rows {
namespace {

/// "[draft info], row with season id 1, draft no 5": the current row, by its first two columns.
std::string Where(jet::Recordset& row) {
  std::string text = "[" + row.TableName() + "], row with ";
  for (std::size_t i = 0; i < row.FieldCount() && i < 2; ++i) {
    const std::string value = row.Fields(i).Value().ToText();
    text += (i == 0 ? "" : ", ") + row.Fields(i).Name() + " " + (value.empty() ? "Null" : value);
  }
  return text;
}

template <typename Convert>
auto Converted(jet::Recordset& row, std::string_view column, const Convert& convert) {
  const std::string text = Text(row, column);
  try {
    return convert(text);
  } catch (const HLIData::Error& error) {
    throw HLIData::Error(error.Number(),
                         Where(row) + ", column '" + std::string(column) + "': " + error.what());
  }
}

}  // namespace

std::int32_t LeadingInt32(jet::Recordset& row, std::string_view column) {
  return Converted(row, column, Conversions::LeadingInt32);
}

std::int32_t WholeInt32(jet::Recordset& row, std::string_view column) {
  return Converted(row, column, Conversions::WholeInt32);
}

bool Boolean(jet::Recordset& row, std::string_view column) {
  return Converted(row, column,
                   [](const std::string& text) { return !text.empty() && Conversions::WholeBoolean(text); });
}

std::int32_t NextID(jet::Recordset& highest) {
  std::int32_t id = 0;
  try {
    id = WholeInt32(highest, "highestid");
  } catch (const std::exception&) {
    // The maximum of an empty table is Null.
  }
  highest.Close();
  return Conversions::CheckedAdd(id, 1);
}

}  // namespace HLDataSrvc::Rows
