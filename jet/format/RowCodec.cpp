#include "jet/format/RowCodec.h"

#include "jet/Error.h"

namespace jet::format {

void RowView::RaiseDamaged(const ColumnDefinition& column) {
  throw Error(ErrorNumber::DamagedFile,
              "A row is damaged: its offsets leave no place for the column '" + column.name + "'.");
}

}  // namespace jet::format
