#pragma once

#include "app/channel/channel.h"
#include "app/cli/console/run_state.h"
#include "app/cli/console/trace.h"
#include "app/cli/end_of_run.h"
#include "app/cli/wiring.h"
#include "app/inventory/limits.h"
#include "platform/allocation.h"
#include "platform/posix/machine.h"
#include "simhost/host.h"
#include "simhost/machine.h"
#include "simhost/statistics.h"
#include "tests/unit/support/capture.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>

namespace korvex {

/// A machine that each test describes, taken away again at its end: whatever the channel left behind then counts as a
/// leak.
class ChannelHost : public testing::Test {
protected:
  /// Puts a new machine in place, with a DSM that has this one array; `rules` are the description's "faults" and
  /// "overrides".
  void Begin(const std::string& rules = R"("faults": [])", const std::string& array = "{}") {
    End();
    m_host =
        simhost::ReadHost(R"({"clock": {"kind": "virtual"}, "dsms": [{"version": {"major": 1, "minor": 2, "build": 3,
      "qfe": 4}, "arrays": [)" +
                              array + "]}], " + rules + "}",
                          "");
    platform::ReplaceMachine(simhost::MakeSimulatedMachine(m_host));
    ResetRunState();
    gCommandLineDsm = {true, "zelmpxdsm"};
    ConnectRooms();
    gNumberOfArrays = 1;
  }

  /// Takes the machine and the channel away.
  void End() {
    FreeRunBuffers();
    MaxArrayModules = kUnknownLimit;
    platform::DeleteObject(std::exchange(gDsmChannel, nullptr));
    CoUninitialize();
    m_host.reset();
    platform::ReplaceMachine(nullptr);
    for (const auto kind : {simhost::InterfaceKind::kLocator, simhost::InterfaceKind::kServices,
                            simhost::InterfaceKind::kClassObject, simhost::InterfaceKind::kEnumerator}) {
      EXPECT_EQ(simhost::LiveCount(kind), 0U) << "interfaces of kind " << static_cast<int>(kind);
    }
    const platform::LiveObjects live = platform::CountLiveObjects();
    EXPECT_EQ(live.bstrs, 0U);
    EXPECT_EQ(live.safeArrays, 0U);
  }

  void TearDown() override {
    End();
    ResetRunState();
  }

  /// What an operation prints on standard error with the trace on; `result` is what it is to give.
  template <class Operation, class Result>
  static std::string Traced(Result result, Operation operation) {
    gTraceEnabled = true;
    return Capture([&] { EXPECT_EQ(operation(), result); }).err;
  }

  simhost::Repository& Classes() { return m_host->repository; }

private:
  std::shared_ptr<simhost::Host> m_host;
};

} // namespace korvex
