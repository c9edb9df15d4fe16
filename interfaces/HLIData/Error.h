#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

#include "HLIData/Visibility.h"

namespace HLIData {

/// Numbers of the errors that the library raises itself. Closed: every `HLIData::Error` carries one of these.
enum class ErrorNumber : std::int32_t {
  UnknownKey = 5,      ///< a collection holds nothing under that key
  Overflow = 6,        ///< a number outside the 32-bit signed range
  BadPosition = 9,     ///< a position outside 1..Count of a collection
  TypeMismatch = 13,   ///< a text that does not hold a value of the wanted type
  PathAccess = 75,     ///< the system does not let us look into a folder
  ObjectNotSet = 91,   ///< an empty reference where an object is needed
  DuplicateKey = 457,  ///< a collection holds something under that key already
};

/// An error of the library: a number, and one clear sentence (`what()`), which is what users are shown.
/// Errors of the database engine are of a class of their own; both are `std::runtime_error`.
class HLIDATA_TYPE Error : public std::runtime_error {
 public:
  Error(ErrorNumber number, const std::string& description)
      : std::runtime_error(description), m_number(number) {}

  ErrorNumber Number() const noexcept { return m_number; }

 private:
  ErrorNumber m_number;
};

}  // namespace HLIData
