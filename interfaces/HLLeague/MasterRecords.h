#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "HLLeague/League.h"

namespace HLLeague {

// Saving and deleting the master records of a league: players, managers, prizes and positions.

/// Raises Failure for a text that its column does not take: one that is too long, or no UTF-8. `what` it is:
/// "last name".
void RequireFits(League& league, const std::string& table, const std::string& column, const std::string& what,
                 const std::string& text);

/// Saves a record through one of the service's Update operations, which `update` calls, as one transaction.
/// Raises Failure with its message when a value is missing, and when the record cannot be written. `what`:
/// "The player".
void SaveRecord(League& league, const std::string& what,
                const std::function<bool(std::string& errMessage)>& update);

/// Deletes a record. Raises Failure with the service's message; `text` is what is deleted: "Ann Lee (P17,
/// DAL, QB)", `usedBy` returns what refers to the record, and is called when it stays; empty for an id
/// without a record.
void DeleteRecord(League& league, HLIData::DeleteType type, std::int32_t id, const std::string& text,
                  const std::function<std::string()>& usedBy);

}  // namespace HLLeague
