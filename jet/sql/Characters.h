#pragma once

/// Classes of the characters of statements.
namespace jet::sql {

inline bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
inline bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
inline bool BeginsWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
inline bool IsInWord(char c) {
  return BeginsWord(c) || IsDigit(c);
}

}  // namespace jet::sql
