#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "jet/Value.h"

namespace cli {

/// JSON whose objects keep their members in the order in which they were added.
using Json = nlohmann::ordered_json;

/// A value as JSON text. Numbers are written exactly, amounts of money and decimals too; a number that JSON
/// cannot write (not a number, infinity), dates, GUIDs and binary become text.
std::string JsonText(const jet::Value& value);

/// Text as a JSON string with its quotes. Bytes that are not UTF-8 become U+FFFD.
std::string JsonText(std::string_view text);

/// A whole result, indented, for printing.
std::string JsonText(const Json& document);

}  // namespace cli
