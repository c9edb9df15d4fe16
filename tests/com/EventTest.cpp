// The event of the settings, heard by a program's sink.

#include <functional>

#include <olectl.h>

#include "tests/com/ComTest.h"

namespace HLDataSrvc::Com::test {
namespace {

/// Hears the event; what a test wants to happen then is `heard`.
class Sink final : public IDispatch {
 public:
  Sink() = default;
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  STDMETHODIMP QueryInterface(REFIID id, void** object) override {
    const bool isKnown = id == IID_IUnknown || id == IID_IDispatch;
    *object = isKnown ? this : nullptr;
    if (!isKnown) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --m_references;
    if (left == 0 && gone) gone();
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    EXPECT_EQ(member, 1);
    EXPECT_EQ(parameters->cArgs, 0U);
    ++count;
    if (heard) heard();
    return E_FAIL;  // the source continues anyway
  }
  ~Sink() { EXPECT_EQ(m_references, 0U) << "the source still holds the sink"; }

  int count = 0;
  std::function<void()> heard;
  std::function<void()> gone;  ///< the source holds it no more

 private:
  ULONG m_references = 0;
};

class Event : public ComTest {
 protected:
  static ComPtr<IConnectionPoint> PointOf(const ComPtr<::ISettingInfo>& settings) {
    ComPtr<IConnectionPoint> point;
    const auto container = settings.As<IConnectionPointContainer>();
    EXPECT_EQ(container->FindConnectionPoint(__uuidof(::_ISettingInfoEvents), point.Put()), S_OK);
    return point;
  }
};

TEST_F(Event, IsHeardWhenTheSettingsChange) {
  Sink sink;
  const auto service = OpenService();
  ComPtr<::ISettingInfo> settings;
  ASSERT_EQ(service->GetSettings(settings.Put()), S_OK);
  LONG before = 0;
  LONG current = 0;
  DWORD cookie = 0;
  settings->get_CurrentSeason(&before);
  const auto point = PointOf(settings);
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);

  sink.heard = [&] { service->get_CurrentSeasonID(&current); };
  EXPECT_EQ(settings->put_CurrentSeason(before), S_OK);
  EXPECT_EQ(sink.count, 0) << "the present value is no change";
  EXPECT_EQ(settings->put_CurrentSeason(before + 77), S_OK);
  EXPECT_EQ(sink.count, 1);
  EXPECT_EQ(current, before + 77) << "the service heard it first";

  EXPECT_EQ(point->Unadvise(cookie), S_OK);
  EXPECT_EQ(settings->put_CurrentSeason(before), S_OK);
  EXPECT_EQ(sink.count, 1);
  EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
}

TEST_F(Event, LetsSinksGoWhileItIsRaised) {
  Sink first;
  Sink second;
  auto settings = Create<::ISettingInfo>(L"SettingInfo");
  auto point = PointOf(settings);
  DWORD firstCookie = 0;
  DWORD secondCookie = 0;
  ASSERT_EQ(point->Advise(&first, &firstCookie), S_OK);
  ASSERT_EQ(point->Advise(&second, &secondCookie), S_OK);
  first.heard = [&] {
    EXPECT_EQ(point->Unadvise(firstCookie), S_OK);
    EXPECT_EQ(point->Unadvise(secondCookie), S_OK);
    settings = {};
    point = {};
  };
  ::ISettingInfo* const last = settings.Get();
  EXPECT_EQ(last->put_CurrentSeason(5), S_OK);
  EXPECT_EQ(first.count, 1);
  EXPECT_EQ(second.count, 0) << "disconnected before its turn";
}

TEST_F(Event, OutlivesWhatItsSinksRelease) {
  // Freed memory is often still readable, so the test fills it again.
  const auto overwriteFreedMemory = [] {
    std::vector<std::vector<char>> blocks;
    for (std::size_t size = 8; size <= 1024; size += 8)
      blocks.insert(blocks.end(), 20, std::vector<char>(size, '\xEE'));
  };
  for (const bool isRaisedByService : {false, true}) {
    Sink first;
    Sink second;
    auto service = OpenService();
    ComPtr<::ISettingInfo> settings;
    ASSERT_EQ(service->GetSettings(settings.Put()), S_OK);
    auto point = PointOf(settings);
    DWORD cookie = 0;
    ASSERT_EQ(point->Advise(&first, &cookie), S_OK);
    ASSERT_EQ(point->Advise(&second, &cookie), S_OK);
    ::IDataService* const lastService = service.Get();
    ::ISettingInfo* const lastSettings = settings.Get();
    LONG season = 0;
    ASSERT_EQ(lastSettings->get_CurrentSeason(&season), S_OK);
    first.heard = [&] {
      service = {};
      settings = {};
      point = {};
      overwriteFreedMemory();
    };
    if (isRaisedByService) {
      EXPECT_EQ(lastService->put_CurrentSeasonYear(2052), S_OK);
    } else {
      EXPECT_EQ(lastSettings->put_CurrentSeason(season + 1), S_OK);
    }
    EXPECT_EQ(first.count, 1);
    EXPECT_EQ(second.count, 1) << "connected until the call ends";
  }
}

TEST_F(Event, StaysConnectedWhileTheSettingsLive) {
  Sink sink;
  auto service = OpenService();
  DWORD cookie = 0;
  {
    ComPtr<::ISettingInfo> settings;
    ASSERT_EQ(service->GetSettings(settings.Put()), S_OK);
    ASSERT_EQ(PointOf(settings)->Advise(&sink, &cookie), S_OK);
  }
  // The service alone holds the settings now.
  EXPECT_EQ(service->put_CurrentSeasonYear(2053), S_OK);
  EXPECT_EQ(sink.count, 1);
  ComPtr<::ISettingInfo> settings;
  ASSERT_EQ(service->GetSettings(settings.Put()), S_OK);
  EXPECT_EQ(PointOf(settings)->Unadvise(cookie), S_OK);
  EXPECT_EQ(PointOf(settings)->Unadvise(cookie), CONNECT_E_NOCONNECTION);
  EXPECT_EQ(service->put_CurrentSeasonYear(2054), S_OK);
  EXPECT_EQ(sink.count, 1);

  DWORD next = 0;
  ASSERT_EQ(PointOf(settings)->Advise(&sink, &next), S_OK);
  EXPECT_NE(next, cookie);
  bool isGone = false;
  sink.gone = [&] { isGone = true; };
  service = {};
  EXPECT_FALSE(isGone) << "the program holds the settings";
  settings = {};
  EXPECT_TRUE(isGone) << "the last reference to the settings is gone";
}

TEST_F(Event, LetsSinksChangeTheConnectionsAsTheyGo) {
  Sink first;
  Sink second;
  const auto settings = Create<::ISettingInfo>(L"SettingInfo");
  const auto point = PointOf(settings);
  DWORD firstCookie = 0;
  DWORD secondCookie = 0;
  ASSERT_EQ(point->Advise(&first, &firstCookie), S_OK);
  first.gone = [&] {
    EXPECT_EQ(point->Unadvise(firstCookie), CONNECT_E_NOCONNECTION);
    EXPECT_EQ(point->Advise(&second, &secondCookie), S_OK);
  };
  EXPECT_EQ(point->Unadvise(firstCookie), S_OK);
  EXPECT_EQ(settings->put_CurrentSeason(5), S_OK);
  EXPECT_EQ(first.count, 0);
  EXPECT_EQ(second.count, 1);
  EXPECT_EQ(point->Unadvise(secondCookie), S_OK);
}

TEST_F(Event, TellsOfItselfAndOfItsSinks) {
  Sink sink;
  const auto settings = Create<::ISettingInfo>(L"SettingInfo");
  const auto container = settings.As<IConnectionPointContainer>();
  ComPtr<IConnectionPoint> point;
  EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, point.Put()), CONNECT_E_NOCONNECTION);
  EXPECT_NE(LastDescription(), L"");
  ComPtr<IEnumConnectionPoints> points;
  ULONG count = 0;
  ASSERT_EQ(container->EnumConnectionPoints(points.Put()), S_OK);
  ASSERT_EQ(points->Next(1, point.Put(), &count), S_OK);
  IID events{};
  EXPECT_EQ(point->GetConnectionInterface(&events), S_OK);
  EXPECT_TRUE(events == __uuidof(::_ISettingInfoEvents));

  DWORD cookie = 0;
  ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
  ComPtr<IEnumConnections> connections;
  CONNECTDATA connection{};
  ASSERT_EQ(point->EnumConnections(connections.Put()), S_OK);
  ASSERT_EQ(connections->Next(1, &connection, nullptr), S_OK);
  EXPECT_EQ(connection.dwCookie, cookie);
  EXPECT_EQ(connection.pUnk, &sink);
  connection.pUnk->Release();
  EXPECT_EQ(connections->Next(1, &connection, nullptr), S_FALSE);
  GUID source{};
  EXPECT_EQ(settings.As<IProvideClassInfo2>()->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source), S_OK);
  EXPECT_TRUE(source == events);
  EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
}

}  // namespace
}  // namespace HLDataSrvc::Com::test
