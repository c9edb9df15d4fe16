#include "cli/commands/Context.h"

#include <iostream>

#include "HLLeague/DraftSession.h"
#include "HLLeague/League.h"
#include "cli/commands/InputFile.h"
#include "jet/Text.h"
#include "league/Utf8.h"
#include "storage/HLServiceUtils.h"

namespace cli {

using namespace HLLeague;

Context::Context(Output& out, Messages& err) : output(out), messages(err) {}

Context::~Context() = default;

League& Context::OpenLeague() {
  if (!m_league) m_league = std::make_unique<League>(Options());
  return *m_league;
}

DraftSession& Context::Draft() {
  if (!m_draft) m_draft = std::make_unique<DraftSession>(OpenLeague());
  return *m_draft;
}

bool Context::HasStored() const {
  return m_league && m_league->HasStored();
}

LeagueOptions Context::Options() {
  return {.folder = folder, .kind = Kind(), .note = [this](const std::string& text) { messages.Note(text); }};
}

std::optional<std::string> Context::Ask(const std::string& question) {
  if (!canAsk) return std::nullopt;
  messages.Prompt(question);
  std::string answer;
  if (!ReadInputLine(std::cin, answer)) return std::nullopt;
  return std::string(jet::Trim(answer));
}

bool Context::Confirm(const std::string& question) {
  const std::string answer = LowerCase(Ask(question + " [yes, no] ").value_or(""));
  return answer == "y" || answer == "yes";
}

HLIData::DBType Context::Kind() const {
  if (kindName == "test") return HLIData::DBType::Test;
  if (kindName == "blank") return HLIData::DBType::Blank;
  if (kindName == "backup") return HLIData::DBType::Backup;
  if (kindName == "setup") return HLIData::DBType::Setup;
  return HLIData::DBType::Live;
}

std::string Context::PathInFolder(const std::string& fileName) const {
  return folder + "\\" + fileName;
}

std::string Context::LeaguePath() const {
  return PathInFolder(HLDataSrvc::HLServiceUtils::GetDatabaseFileName(Kind(), "", ""));
}

}  // namespace cli
