#pragma once

namespace HLDataSrvc {

/// Stores a value unless the field equals it already, and returns whether it stored it: the rule of setters
/// that track changes. References are equal when they point at the same object.
template <typename T>
bool StoreIfDifferent(T& field, const T& value) {
  if (field == value) return false;
  field = value;
  return true;
}

}  // namespace HLDataSrvc
