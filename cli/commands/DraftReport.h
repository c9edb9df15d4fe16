#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HLLeague/DraftOrder.h"
#include "HLLeague/DraftSession.h"
#include "cli/commands/Context.h"
#include "cli/output/Json.h"

namespace cli {

/// Tells of picks and of who is on the clock, in words and as JSON. Made for the moment; borrows the session.
class DraftReport {
 public:
  explicit DraftReport(HLLeague::DraftSession& session);

  const HLLeague::DraftOrder& Order() const { return m_order; }

  /// "pick 13, round 2".
  std::string TurnText(std::int32_t number) const;
  /// What stands at a pick: "Ann Lee (P17, DAL, QB)".
  std::string HeldText(const HLLeague::Pick& pick) const;
  /// "Bob Smith"; the id alone of one who does not take part.
  std::string ManagerText(std::int32_t managerID) const;
  /// Who picks next, as a sentence: "On the clock: Bob Smith, pick 14, round 2."
  std::string ClockText();

  /// Number, round, manager, what was picked and whether that is saved.
  Json PickJson(std::int32_t number);
  /// Number, round and manager of a pick that is due; null for none.
  Json TurnJson(const std::optional<std::int32_t>& number) const;

  /// Prints the result of a command that changed picks: `lines` for people, or the picks and the clock as
  /// JSON.
  void PrintChange(Context& context, const std::vector<std::int32_t>& numbers,
                   const std::vector<std::string>& lines);

 private:
  Json ManagerJson(std::int32_t managerID) const;

  HLLeague::DraftSession& m_session;
  HLIData::ISeasonInfo& m_season;
  HLLeague::DraftOrder m_order;
};

}  // namespace cli
