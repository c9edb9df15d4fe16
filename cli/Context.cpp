#include "cli/Context.h"

#include "cli/League.h"
#include "storage/HLServiceUtils.h"

namespace cli {

Context::Context(Output& out, Messages& err) : output(out), messages(err) {}

Context::~Context() = default;

League& Context::TheLeague() {
  if (!m_league) m_league = std::make_unique<League>(*this);
  return *m_league;
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
