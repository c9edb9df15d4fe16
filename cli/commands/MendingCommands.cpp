#include "cli/commands/MendingCommands.h"

#include <cstdint>

#include "storage/Schema.h"

namespace cli {
namespace {

using HLDataSrvc::Misfit;
namespace Schema = HLDataSrvc::Schema;

/// The command for a finding, without the one that makes its season the current one.
std::string MendingCommand(const HLDataSrvc::LeagueFinding& finding) {
  const std::string number = std::to_string(finding.number);
  const bool isPick = finding.table == Schema::Draft::kTable;
  const bool isWinning = finding.table == Schema::Winning::kTable;
  switch (finding.misfit) {
    case Misfit::NoSettings:
    case Misfit::NoCurrentSeason:
      return "season use YEAR";
    case Misfit::NegativeNumber:
    case Misfit::TooManyPicks:
      return "season set --managers N --rounds N";
    case Misfit::SameYear:
      return "season set --year YEAR";
    case Misfit::WeeksDiffer:
      return "season set --regular-weeks N --weeks N";
    case Misfit::TooManyManagers:
      return "manager leave NAME";
    case Misfit::SameRank:
      return "manager rank NAME...";
    case Misfit::OutsideDraft:
      return "draft clear " + number;
    case Misfit::NotTakingPart:
      if (finding.managerID != 0) return "manager join " + std::to_string(finding.managerID);
      return isPick ? "draft pick WHO --pick " + number : "winning remove " + number;
    case Misfit::UnknownPlayer:
    case Misfit::PickedTwice:
    case Misfit::PickWithoutManager:
      return "draft pick WHO --pick " + number;
    case Misfit::UnknownManager:
      if (isPick) return "draft pick WHO --pick " + number;
      return isWinning ? "winning remove " + number : "";
    case Misfit::UnknownTeam:
      return isPick ? "draft pick WHO --pick " + number : "player edit P" + number + " --team TEAM";
    case Misfit::UnknownPosition:
      if (finding.table != Schema::Player::kTable) return "";
      return "player edit P" + number + " --position POSITION";
    case Misfit::UnknownPrize:
      return isWinning ? "winning remove " + number : "";
    case Misfit::UnknownPrizeType:
      return "prize edit " + number + " --type TYPE";
    case Misfit::LatePicks:
      return "draft clear";
    case Misfit::NotPutUp:
      return "prize set " + number + " AMOUNT";
    case Misfit::OutsideWeeks:
      return "winning remove " + number;
    default:
      return "";
  }
}

}  // namespace

std::vector<std::string> MendingCommands(const HLDataSrvc::LeagueFinding& finding) {
  const std::string command = MendingCommand(finding);
  if (command.empty()) return {};
  if (finding.seasonID == 0) return {command};
  return {"settings --current-season " + std::to_string(finding.seasonID), command};
}

}  // namespace cli
