#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "HLLeague/League.h"

namespace HLLeague {

/// Finds records by the words that people write for them: an id, a short name, or a whole name, in any case.
class NameIndex {
 public:
  /// `kind`: what the records are, for messages: "position".
  explicit NameIndex(std::string kind) : m_kind(std::move(kind)) {}

  /// A record. Identifiers are from 1; others are skipped. Short name and names may be empty.
  void Add(std::int32_t id, const std::string& shortName, const std::vector<std::string>& names);

  /// The id of the record that a word means: one of that id, else of that short name, else of that name.
  /// Raises Failure when there is none, or several.
  std::int32_t IDOf(const std::string& word) const;
  /// What a record is called: its short name, else its name; its id when it has neither or is not known.
  std::string NameOf(std::int32_t id) const;

 private:
  using IDs = std::map<std::string, std::vector<std::int32_t>>;

  std::int32_t OnlyOne(const std::string& word, const std::vector<std::int32_t>& ids) const;

  std::string m_kind;
  std::map<std::int32_t, std::string> m_shown;  ///< what each id is called in messages
  IDs m_byShortName;                            ///< in small letters, as are the names
  IDs m_byName;
};

NameIndex PositionNames(League& league);
/// By name, nickname, or both.
NameIndex TeamNames(League& league);
NameIndex PrizeTypeNames(League& league);

}  // namespace HLLeague
