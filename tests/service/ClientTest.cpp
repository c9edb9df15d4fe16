#include <HLDataSrvc/CreateDataService.h>
#include <HLDataSrvc/ServiceDatabase.h>
#include <HLIData/Error.h>
#include <gtest/gtest.h>

namespace {

// Answers that there is no file, and counts its questions.
class EmptyHost final : public HLDataSrvc::Host {
 public:
  std::string ApplicationFolder() const override { return "C:\\League"; }
  std::string FindFile(const std::string&) const override {
    ++questions;
    return {};
  }
  void ShowMessage(const std::string&, const std::string&) override { ++messages; }
  std::chrono::year_month_day Today() const override { return {}; }

  mutable int questions = 0;
  int messages = 0;
};

TEST(Client, UsesTheServiceThroughItsInterfaces) {
  const auto host = std::make_shared<EmptyHost>();
  const std::shared_ptr<HLIData::IDataService> service = HLDataSrvc::CreateDataService(host);
  std::string message;
  EXPECT_FALSE(service->Initialize(HLIData::DBType::Live, message));
  EXPECT_EQ(message, "Database file: \\Halcyra - Live.mdb is missing.");
  EXPECT_EQ(host->questions, 2) << "once for the folder, once for the file";
  EXPECT_EQ(host->messages, 0);
}

TEST(Client, CatchesTheLibrarysErrors) {
  const auto service = HLDataSrvc::CreateDataService(std::make_shared<EmptyHost>());
  try {
    service->GetPrizeTypes();
    ADD_FAILURE();
  } catch (const HLIData::Error& error) {
    EXPECT_EQ(error.Number(), HLIData::ErrorNumber::ObjectNotSet);
  }
  EXPECT_THROW(HLDataSrvc::RunInTransaction(*service, [] { return true; }), HLIData::Error);
}

TEST(Client, HasAHostOfTheSystemWithoutOneOfItsOwn) {
  EXPECT_NE(HLDataSrvc::CreateDataService(), nullptr);
  EXPECT_NE(HLDataSrvc::SystemHost()->ApplicationFolder(), "");
}

}  // namespace
