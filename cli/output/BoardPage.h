#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "HLLeague/DraftSession.h"
#include "HLLeague/League.h"
#include "HLLeague/Picks.h"

namespace cli {

/// A draft as a page for the big screen, the phone and the printer: a row for each round, a column for each
/// manager. Marks what DraftBoard marks. `refresh`: seconds after which the page is loaded again.
std::string BoardPage(HLLeague::League& league, const HLIData::ISeasonInfo& season,
                      const HLLeague::Picks& picks, const HLLeague::Picks& stored,
                      const std::optional<std::int32_t>& refresh);

/// A file that holds the page of the current season's board, written again whenever the draft has changed.
class BoardFile {
 public:
  /// Raises Failure when something is there that is no board's page, or `refresh` is not from 1 to 3600.
  BoardFile(std::string path, const std::optional<std::int32_t>& refresh);

  const std::string& Path() const { return m_path; }
  /// Writes the page as the draft stands, unless it has not changed. Raises Failure.
  void Update(HLLeague::DraftSession& draft);

 private:
  std::string m_path;
  std::optional<std::int32_t> m_refresh;
  std::string m_written;
};

}  // namespace cli
