#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "jet/table/Store.h"

namespace jet {

/// Copies what the system tables say of the objects of one database into another that has its tables: objects
/// of any kind, with their dates, properties and rights, and stored queries.
///
/// Tables get new ids, because theirs are pages; other objects keep theirs. Raises FeatureNotSupported for a
/// column of a system table that the other database does not have.
class CatalogCopy {
 public:
  CatalogCopy(Store& from, Store& to);

  /// Notes that the table of the definition page `original` is the one of `copy`.
  void NoteTable(PageNumber original, PageNumber copy) { m_ids[original] = copy; }
  /// Adds the objects that are neither tables nor enforced relationships, and the rows of stored queries and
  /// of relationships that are not enforced. After the tables, before relationships are made.
  void AddObjects();
  /// Gives rebuilt objects the dates and properties of the original ones, and all of them the
  /// rights. Last of all.
  void CopyAttributes();

 private:
  void AddQueries();
  void AddRelationRows();
  void CopyRights();
  /// Id of an object in the copy; 0 when it has none.
  std::uint32_t CopyOf(std::uint32_t id) const;

  Store* m_from;
  Store* m_to;
  std::map<std::uint32_t, std::uint32_t> m_ids;  // of objects: original -> copy
};

}  // namespace jet
