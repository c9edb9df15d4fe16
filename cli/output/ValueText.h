#pragma once

#include <string>

#include "jet/Value.h"

namespace cli {

/// A value as the text of a dump: yes/no as -1 or 0, singles and doubles with as many digits as it takes to
/// read the same number back, the rest as `jet::Value::ToText` writes it. Null gives an empty text; formats
/// that distinguish Null from empty text check before.
std::string ValueText(const jet::Value& value);

}  // namespace cli
