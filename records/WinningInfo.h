#pragma once

#include <cstdint>
#include <string>

#include "HLIData/IWinningInfo.h"

namespace HLDataSrvc {

/// A prize won by a manager in a week.
///
/// Setting a field to another value makes the record dirty; setting it to the present value does nothing.
/// Prize and manager are identified by text on purpose: what the column holds goes in and out as it is.
class WinningInfo final : public HLIData::IWinningInfo {
 public:
  std::int32_t ID() const override { return m_id; }
  std::string Key() const override { return m_key; }
  std::int32_t SeasonID() const override { return m_seasonID; }
  void SeasonID(std::int32_t value) override;
  std::string ManagerID() const override { return m_managerID; }
  void ManagerID(const std::string& value) override;
  std::string PrizeID() const override { return m_prizeID; }
  void PrizeID(const std::string& value) override;
  std::int32_t Week() const override { return m_week; }
  void Week(std::int32_t value) override;
  void Action(HLIData::WinningAction value) override;
  HLIData::WinningAction Action() const override { return m_action; }

  // For this component only.
  void ID(std::int32_t value);
  /// Whether a field was set since the last load or save.
  bool IsDirty() const { return m_isDirty; }
  void IsDirty(bool value) { m_isDirty = value; }
  /// Whether the winning has a row in the database.
  bool IsSaved() const { return m_isSaved; }
  void IsSaved(bool value) { m_isSaved = value; }
  /// Makes the key, keeps it as Key and returns it: that of the identifier (K17) or, when that is below 1,
  /// "KNEW" and `sequence` (KNEW3).
  std::string MakeKey(std::int32_t sequence);

 private:
  std::int32_t m_id = 0;
  std::int32_t m_seasonID = 0;
  std::string m_prizeID;
  std::string m_managerID;
  std::int32_t m_week = 0;
  bool m_isDirty = false;
  HLIData::WinningAction m_action = HLIData::WinningAction::None;
  bool m_isSaved = false;
  std::string m_key;
};

}  // namespace HLDataSrvc
