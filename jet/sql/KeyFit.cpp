#include "jet/sql/KeyFit.h"

#include <cmath>
#include <optional>
#include <string>

#include "jet/sql/Numbers.h"

namespace jet::sql {
namespace {

// +0 and -0 have different keys; NaN has many.
bool HasOneKey(double value) {
  return value != 0 && !std::isnan(value);
}

}  // namespace

KeyFit FitKey(const Value& wanted, const format::ColumnDefinition& column, Value& key) {
  if (wanted.IsNull()) return KeyFit::NoRow;
  switch (column.type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency: {
      if (column.type == ColumnType::Long && wanted.As<std::int32_t>() != nullptr) {
        key = wanted;
        return KeyFit::Found;
      }
      const std::optional<Value> same = SameNumberAs(wanted, column.type);
      if (!same) return KeyFit::NoRow;
      key = *same;
      return KeyFit::Found;
    }
    case ColumnType::Single:
    case ColumnType::Double: {
      const std::optional<Value> same = SameNumberAs(wanted, column.type);
      if (!same) return KeyFit::NoRow;
      if (!HasOneKey(ToDouble(*same))) return KeyFit::Unknown;
      key = *same;
      return KeyFit::Found;
    }
    case ColumnType::DateTime: {
      const auto* const date = wanted.As<DateTime>();
      if (date == nullptr || !HasOneKey(date->days)) return KeyFit::Unknown;
      key = wanted;
      return KeyFit::Found;
    }
    case ColumnType::Text: {
      const auto* const text = wanted.As<std::string>();
      if (text == nullptr || text->size() > kMostKeyBytes) return KeyFit::Unknown;
      key = wanted;
      return KeyFit::Found;
    }
    case ColumnType::Guid:
      if (wanted.As<Guid>() == nullptr) return KeyFit::Unknown;
      key = wanted;
      return KeyFit::Found;
    default:
      return KeyFit::Unknown;
  }
}

bool HasKeyOrder(ColumnType type) {
  switch (type) {
    case ColumnType::YesNo:
    case ColumnType::Byte:
    case ColumnType::Integer:
    case ColumnType::Long:
    case ColumnType::Currency:
    case ColumnType::Single:
    case ColumnType::Double:
    case ColumnType::DateTime:
      return true;
    default:
      return false;
  }
}

}  // namespace jet::sql
