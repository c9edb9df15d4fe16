// Prize types, prizes, and the money that a season puts up for them.

#include "records/Failures.h"
#include "records/PrizeInfo.h"
#include "records/PrizeTmplInfo.h"
#include "records/PrizeTypeInfo.h"
#include "records/RecordKey.h"
#include "records/References.h"
#include "service/DataService.h"
#include "service/Rows.h"
#include "storage/Schema.h"

namespace HLDataSrvc {

using HLIData::IPrizeInfo;
using HLIData::IPrizeTmplInfo;
using HLIData::IPrizeTypeInfo;
using HLIData::KeyedCollection;

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
  return ShowFailure<Result>(*m_host, "Error in loading prizes.", [this](Result& result) {
    const auto types = GetPrizeTypes();
    // Kept before it is filled: what a failure leaves in it is served from then on.
    const auto prizes = m_caches.prizeTmpls = std::make_shared<KeyedCollection<IPrizeTmplInfo>>();
    Rows::ForEach(Database(), "select * from [prize info]", [&](jet::Recordset& row) {
      const auto prize = std::make_shared<PrizeTmplInfo>();
      prize->ID(Rows::WholeInt32(row, Schema::Prize::kID));
      prize->Desc(Rows::Text(row, Schema::Prize::kDesc));
      prize->PrizeType(types->Item(RecordKey(Rows::LeadingInt32(row, Schema::Prize::kTypeID))));
      prizes->Add(prize, RecordKey(prize->ID()));
    });
    result = prizes;
  });
}

std::shared_ptr<KeyedCollection<IPrizeInfo>> DataService::LoadMoneyDistribution(std::int32_t seasonID) {
  const auto rows = Database().OpenRecordset(
      "select * from [money distribution info] m where m.[season id] = " + std::to_string(seasonID));
  GetPrizeTmpls();  // shows its own failure; a prize that it did not reach is missing below
  auto prizes = std::make_shared<KeyedCollection<IPrizeInfo>>();
  for (; !rows->Eof(); rows->MoveNext()) {
    const std::string key =
        HLConsts::kRecordKeyPrefix + Rows::Text(*rows, Schema::MoneyDistribution::kPrizeID);
    const std::int32_t amount = Rows::WholeInt32(*rows, Schema::MoneyDistribution::kMoney);
    const auto prize = std::make_shared<PrizeInfo>();
    prize->PrizeTmpl(Required(m_caches.prizeTmpls, "The prizes are not loaded.").Item(key));
    prize->Amount(amount);
    prizes->Add(prize, key);
  }
  rows->Close();
  return prizes;
}

}  // namespace HLDataSrvc
