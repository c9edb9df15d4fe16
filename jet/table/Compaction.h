#pragma once

#include "jet/table/Store.h"

namespace jet {

/// Copies tables, their rows in storage order, indexes, relationships and all other objects of the catalog,
/// with their dates, properties and rights, into a database that has none yet. Indexes are built when the
/// rows are there, so that their pages are full; automatic numbers go on where they were.
///
/// `to` should be closed and removed when this fails. Raises FeatureNotSupported for an index that cannot be
/// made, DamagedFile for a row count that is not that of the rows, and what reading and adding rows raise.
void CopyContents(Store& from, Store& to);

}  // namespace jet
