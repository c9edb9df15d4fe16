#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "jet/file/File.h"
#include "jet/table/Store.h"

namespace jet {

/// Properties of a database made from nothing.
struct NewDatabase {
  std::string password;           ///< UTF-8, up to 20 UTF-16 units; empty: none
  std::uint32_t databaseKey = 0;  ///< key that the pages are coded with; 0: they are plain
};

/// Fills an empty file with a database that has nothing but its four system tables (16 pages) and opens it.
/// `name` is used in messages. Raises InvalidDefinition for a password that is too long, and the errors of
/// the File; what is in the file then is of no use.
std::unique_ptr<Store> CreateEmptyDatabase(std::unique_ptr<File> file, const std::string& name,
                                           const NewDatabase& database, std::size_t cacheBytes);

}  // namespace jet
