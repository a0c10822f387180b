#pragma once

#include "platform/allocation.h"
#include "platform/posix/machine.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"
#include "tests/unit/sim/lamp_host.h"
#include "tests/unit/support/traced.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_connection.h"
#include "wmi/orb_wmi_enumerator.h"

#include <string>

namespace korvex {

/// Tests over the host of the lamps, connected to it and standing on its first lamp, whose colour is 3 red. Whatever of
/// the host, the platform or the stores a test leaves behind fails it.
class WmiHostTest : public testing::Test {
protected:
  void SetUp() override {
    m_before = Live();
    simhost::CimClass shelf;
    shelf.name = L"Shelf";
    shelf.properties = {simhost::EmbeddedArray(L"Colours", L"Colour")};
    m_lamps.host->repository.AddClass(shelf);
    platform::ReplaceMachine(simhost::MakeSimulatedMachine(m_lamps.host));
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    ASSERT_EQ(m_connection.Initialize(L"root\\WMI"), kWmiSuccess);
    ASSERT_EQ(m_colours.Initialize(m_connection, L"Colour"), kWmiSuccess);
    Stand();
  }

  void TearDown() override {
    m_lamp.cleanUp();
    m_class.cleanUp();
    m_colours.cleanUp();
    m_connection.CloseConnection();
    CoUninitialize();
    platform::ReplaceMachine(nullptr);
    EXPECT_EQ(Live(), m_before);
  }

  /// Binds the class again and stands on its first instance, without any fault.
  void Stand() {
    m_lamps.host->faults = {};
    ASSERT_EQ(m_class.Initialize(m_connection, L"Lamp"), kWmiSuccess);
    ASSERT_EQ(m_lamp.Initialize(&m_class), kWmiSuccess);
    OrbWmiEnumerator colour;
    const std::uint8_t red = 3;
    ASSERT_EQ(colour.InitializeInputEnumerator(&m_colours), kWmiSuccess);
    ASSERT_EQ(colour.SetProperty(L"Red", &red, sizeof red), kWmiSuccess);
    ASSERT_EQ(m_lamp.SetProperty(L"Colour", colour.GetEnumeratorInterface(), sizeof(void*)), kWmiSuccess);
  }

  /// From now on only this fails: the `occurrence`-th `call` gives what a fault of that name does.
  void Fail(const std::string& call, const std::string& gives, int occurrence = 1) {
    m_lamps.host->faults =
        std::move(simhost::ReadHost(R"({"faults": [{"operation": ")" + call + R"(", "give": ")" + gives +
                                        R"(", "occurrence": )" + std::to_string(occurrence) + "}]}",
                                    "")
                      ->faults);
  }

  static int Number(OrbWmiEnumerator& enumerator, const wchar_t* property) {
    std::uint32_t number = 0;
    return enumerator.GetProperty(property, &number, sizeof number) == kWmiSuccess ? static_cast<int>(number) : -1;
  }

  simhost::LampHost m_lamps;
  OrbWmiConnection m_connection;
  OrbWmiClass m_class;
  OrbWmiClass m_colours;
  OrbWmiEnumerator m_lamp;

private:
  /// How much of each kind is alive.
  static std::string Live() {
    std::string live = std::to_string(platform::CountLiveObjects().bstrs) + " BSTRs, " +
                       std::to_string(platform::CountLiveObjects().safeArrays) + " arrays";
    for (const auto kind : {simhost::InterfaceKind::kLocator, simhost::InterfaceKind::kServices,
                            simhost::InterfaceKind::kClassObject, simhost::InterfaceKind::kEnumerator}) {
      live += ", " + std::to_string(simhost::LiveCount(kind)) + " interfaces";
    }
    const auto addStore = [](const char* name, std::uint64_t count, void* text) {
      *static_cast<std::string*>(text) += count == 0 ? "" : ", " + std::to_string(count) + " " + name;
    };
    platform::VisitLiveStores(addStore, &live);
    return live;
  }

  std::string m_before;
};

} // namespace korvex
