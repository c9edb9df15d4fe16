#include "service/Rows.h"

#include <exception>

namespace HLDataSrvc::Rows {

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
