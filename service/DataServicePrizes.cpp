// Prize types, prizes, and the money that a season puts up for them.

#include "HLIData/Error.h"
#include "records/PrizeInfo.h"
#include "records/PrizeTmplInfo.h"
#include "records/PrizeTypeInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "service/DataService.h"
#include "service/Failures.h"
#include "service/Rows.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::Error;
using HLIData::ErrorNumber;
using HLIData::IPrizeInfo;
using HLIData::IPrizeTmplInfo;
using HLIData::IPrizeTypeInfo;
using HLIData::KeyedCollection;

namespace {

/// The beginning of what is wrong with the current row of a season's money.
std::string PrizeOfSeason(jet::Recordset& row, std::int32_t seasonID) {
  const std::string id = Rows::Text(row, Schema::MoneyDistribution::kPrizeID);
  return "Prize " + (id.empty() ? "Null" : id) + " in [money distribution info] of season " +
         std::to_string(seasonID);
}

}  // namespace

std::shared_ptr<KeyedCollection<IPrizeTypeInfo>> DataService::GetPrizeTypes() {
  if (m_caches.prizeTypes) return m_caches.prizeTypes;
  const auto types = std::make_shared<KeyedCollection<IPrizeTypeInfo>>();
  Rows::ForEach(Database(), "select * from [prize type info]", [&](jet::Recordset& row) {
    const auto type = std::make_shared<PrizeTypeInfo>();
    type->ID(Rows::WholeInt32(row, Schema::PrizeType::kTypeID));
    type->Name(Rows::Text(row, Schema::PrizeType::kTypeName));
    types->Add(type, RecordKey(type->ID()));
  });
  m_caches.prizeTypes = types;
  return types;
}

std::shared_ptr<KeyedCollection<IPrizeTmplInfo>> DataService::GetPrizeTmpls() {
  if (m_caches.prizeTmpls) return m_caches.prizeTmpls;
  using Result = std::shared_ptr<KeyedCollection<IPrizeTmplInfo>>;
  const Operation operation(*this);
  auto loaded = Trap<Result>("Error in loading prizes.", [this](Result& result) {
    const auto types = GetPrizeTypes();
    // Kept before it is filled: what a failure leaves in it is served from then on.
    const auto prizes = m_caches.prizeTmpls = std::make_shared<KeyedCollection<IPrizeTmplInfo>>();
    Rows::ForEach(Database(), "select * from [prize info]", [&](jet::Recordset& row) {
      const auto prize = std::make_shared<PrizeTmplInfo>();
      prize->ID(Rows::WholeInt32(row, Schema::Prize::kID));
      prize->Desc(Rows::Text(row, Schema::Prize::kDesc));
      const std::int32_t typeID = Rows::LeadingInt32(row, Schema::Prize::kTypeID);
      prize->PrizeType(types->Find(RecordKey(typeID)));
      if (!prize->PrizeType()) {
        throw Error(ErrorNumber::UnknownKey, "Prize " + std::to_string(prize->ID()) +
                                                 " in [prize info] is of type " + std::to_string(typeID) +
                                                 ", which is not in [prize type info].");
      }
      prizes->Add(prize, RecordKey(prize->ID()));
    });
    result = prizes;
  });
  m_shown.prizes = !loaded;
  return loaded;
}

std::shared_ptr<KeyedCollection<IPrizeInfo>> DataService::LoadMoneyDistribution(std::int32_t seasonID) {
  const auto rows = Database().OpenRecordset(
      "select * from [money distribution info] m where m.[season id] = " + std::to_string(seasonID));
  GetPrizeTmpls();  // shows its failure; a prize that it did not reach is missing below
  auto prizes = std::make_shared<KeyedCollection<IPrizeInfo>>();
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string key =
        HLConsts::kRecordKeyPrefix + Rows::Text(*rows, Schema::MoneyDistribution::kPrizeID);
    const std::int32_t amount = Rows::WholeInt32(*rows, Schema::MoneyDistribution::kMoney);
    const auto prize = std::make_shared<PrizeInfo>();
    prize->PrizeTmpl(LookUpIn(m_shown.prizes, [&] {
      auto tmpl = Required(m_caches.prizeTmpls, "The prizes are not loaded.").Find(key);
      if (tmpl) return tmpl;
      throw Error(ErrorNumber::UnknownKey, PrizeOfSeason(*rows, seasonID) + " is not in [prize info].");
    }));
    prize->Amount(amount);
    if (prizes->Find(key)) {
      throw Error(ErrorNumber::DuplicateKey, PrizeOfSeason(*rows, seasonID) + " stands there twice.");
    }
    prizes->Add(prize, key);
  }
  rows->Close();
  return prizes;
}

}  // namespace HLDataSrvc
