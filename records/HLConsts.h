#pragma once

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

}  // namespace HLDataSrvc::HLConsts
