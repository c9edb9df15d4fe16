#pragma once

#include <memory>
#include <optional>
#include <string>

#include "HLIData/Error.h"
#include "records/ManagerInfo.h"
#include "records/ManagerTmplInfo.h"
#include "records/PlayerInfo.h"
#include "records/PrizeTmplInfo.h"
#include "records/TeamInfo.h"

namespace HLDataSrvc::test {

/// The number of the error that a call raises, if any.
template <typename Call>
std::optional<HLIData::ErrorNumber> NumberOfError(Call&& call) {
  try {
    call();
  } catch (const HLIData::Error& error) {
    return error.Number();
  }
  return {};
}

inline std::shared_ptr<PlayerInfo> Player(std::int32_t id, const std::string& firstName = {},
                                          const std::string& lastName = {}) {
  auto player = std::make_shared<PlayerInfo>();
  player->ID(id);
  player->FirstName(firstName);
  player->LastName(lastName);
  player->IsDirty(false);
  return player;
}

inline std::shared_ptr<TeamInfo> Team(std::int32_t id, const std::string& name = {}) {
  auto team = std::make_shared<TeamInfo>();
  team->ID(id);
  team->Name(name);
  return team;
}

inline std::shared_ptr<ManagerTmplInfo> ManagerTmpl(std::int32_t id, const std::string& lastName = {}) {
  auto manager = std::make_shared<ManagerTmplInfo>();
  manager->ID(id);
  manager->LastName(lastName);
  return manager;
}

inline std::shared_ptr<ManagerInfo> Manager(std::int32_t id, const std::string& lastName = {}) {
  auto manager = std::make_shared<ManagerInfo>();
  manager->ManagerTmpl(ManagerTmpl(id, lastName));
  return manager;
}

inline std::shared_ptr<PrizeTmplInfo> PrizeTmpl(std::int32_t id) {
  auto prize = std::make_shared<PrizeTmplInfo>();
  prize->ID(id);
  return prize;
}

/// A pickable of a client's own making.
struct ForeignPickable final : HLIData::IPickable {
  explicit ForeignPickable(std::int32_t typeCode) : type(static_cast<HLIData::PickType>(typeCode)) {}
  HLIData::PickType PickType() const override { return type; }
  std::string PickName() const override { return "Foreign"; }
  std::int32_t PickID() const override {
    if (!canBeIdentified) throw HLIData::Error(HLIData::ErrorNumber::ObjectNotSet, "no identifier");
    return 9;
  }

  HLIData::PickType type;
  bool canBeIdentified = true;
};

}  // namespace HLDataSrvc::test
