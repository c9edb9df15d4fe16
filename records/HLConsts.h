#pragma once

#include <cstdint>

/// Constants that several parts of the component share.
namespace HLDataSrvc::HLConsts {

/// Title of every message box.
inline constexpr char kServiceTitle[] = "Halcyra Service";
/// Separates an operation's sentence from the error's description in messages.
inline constexpr char kLineBreak[] = "\r\n";
/// Begins the key of every record that is held under its identifier.
inline constexpr char kRecordKeyPrefix[] = "K";
/// Begins the key of a record that has no identifier yet; a running number follows.
inline constexpr char kNewRecordKeyPrefix[] = "KNEW";
/// Picks that a draft may have, managers times rounds. A season with more is loaded with an empty draft.
inline constexpr std::int32_t kMostPicks = 10000;

}  // namespace HLDataSrvc::HLConsts
