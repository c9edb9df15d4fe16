#pragma once

#include <memory>

#include "HLIData/IDataService.h"
#include "HLIDataCom.h"
#include "com/ComPtr.h"
#include "com/Errors.h"
#include "com/Identities.h"
#include "com/RecordAccess.h"

/// Records and collections of the component, and the COM objects that stand for them.
namespace HLDataSrvc::Com {

/// The interface under which clients see a record, and what a record of the kind is called in errors.
template <typename Record>
struct Seen;
#define HALCYRA_SEEN(name, words)           \
  template <>                               \
  struct Seen<HLIData::name> {              \
    using As = ::name;                      \
    static constexpr char kWords[] = words; \
  }
HALCYRA_SEEN(IDataService, "a data service");
HALCYRA_SEEN(IDraftInfo, "a pick");
HALCYRA_SEEN(IManagerInfo, "a manager of a season");
HALCYRA_SEEN(IManagerTmplInfo, "a manager's master record");
HALCYRA_SEEN(IPickable, "something to pick");
HALCYRA_SEEN(IPlayerInfo, "a player");
HALCYRA_SEEN(IPositionInfo, "a position");
HALCYRA_SEEN(IPrizeInfo, "a prize of a season");
HALCYRA_SEEN(IPrizeTmplInfo, "a prize's master record");
HALCYRA_SEEN(IPrizeTypeInfo, "a prize type");
HALCYRA_SEEN(ISeasonInfo, "a season");
HALCYRA_SEEN(ISettingInfo, "the settings");
HALCYRA_SEEN(ITeamInfo, "a team");
HALCYRA_SEEN(IWinningInfo, "a winning");
#undef HALCYRA_SEEN
template <typename T>
struct Seen<HLIData::KeyedCollection<T>> {
  using As = ::IKeyedCollection;
  static constexpr char kWords[] = "a collection of the right kind";
};

// A new object for a record or a collection that has none. Objects that a client implements stand for
// themselves.
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IDataService>& service);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IDraftInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IManagerInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IManagerTmplInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPickable>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPlayerInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPositionInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPrizeInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPrizeTmplInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IPrizeTypeInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::ISeasonInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::ISettingInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::ITeamInfo>& record);
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::IWinningInfo>& record);
/// For collections of prizes, managers, winnings, picks, seasons, positions, teams, prize master records,
/// prize types and things to pick; see Collections.cpp.
template <typename T>
ComPtr<IUnknown> MakeObject(const std::shared_ptr<HLIData::KeyedCollection<T>>& collection);

/// The address by which a record, or a collection, is known.
template <typename Record>
const void* IdentityOf(const Record& record) {
  if constexpr (std::is_polymorphic_v<Record>) {
    return dynamic_cast<const void*>(&record);
  } else {
    return &record;
  }
}

/// The object that stands for a record: the same one for as long as anybody holds it. Empty for an empty
/// reference.
template <typename Record>
ComPtr<typename Seen<Record>::As> Wrap(const std::shared_ptr<Record>& record) {
  if (!record) return {};
  ComPtr<IUnknown> object = Identities::Find(IdentityOf(*record));
  if (!object) object = MakeObject(record);
  return object.template As<typename Seen<Record>::As>();
}

/// A client's own IPickable as the component sees it.
std::shared_ptr<HLIData::IPickable> AdoptPickable(IUnknown* object);

/// The very record, or collection, that an object stands for; empty for a null pointer. A client may
/// implement IPickable itself. Raises a type mismatch for any other object that is not of this library, or is
/// of another kind.
template <typename Record>
std::shared_ptr<Record> Unwrap(IUnknown* object) {
  std::shared_ptr<Record> record;
  if (!object) return record;
  ComPtr<IRecordAccess> access;
  object->QueryInterface(__uuidof(IRecordAccess), access.PutVoid());
  if (access && access->View(typeid(Record), &record)) return record;
  if constexpr (std::is_same_v<Record, HLIData::IPickable>) {
    if (!access) record = AdoptPickable(object);
  }
  if (!record) {
    throw TypeMismatch(std::string("An object was given that is not ") + Seen<Record>::kWords +
                       " of this component.");
  }
  return record;
}

}  // namespace HLDataSrvc::Com
