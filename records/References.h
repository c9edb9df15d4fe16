#pragma once

#include <memory>
#include <string>

#include "HLIData/Error.h"

namespace HLDataSrvc {

/// What a reference points at. Raises ObjectNotSet, with `description` as the whole sentence, for an empty
/// one.
template <typename T>
T& Required(const std::shared_ptr<T>& reference, const char* description) {
  if (!reference) throw HLIData::Error(HLIData::ErrorNumber::ObjectNotSet, description);
  return *reference;
}

/// The record of this component behind an interface, which clients may implement too: the very object, under
/// another view; empty for an empty reference. Raises TypeMismatch, naming the object by `name`, for one of
/// another class.
template <typename Record, typename Interface>
std::shared_ptr<Record> OwnRecord(const std::shared_ptr<Interface>& object, const std::string& name) {
  auto record = std::dynamic_pointer_cast<Record>(object);
  if (object && !record) {
    throw HLIData::Error(HLIData::ErrorNumber::TypeMismatch, name + " is not a record of this service.");
  }
  return record;
}

}  // namespace HLDataSrvc
