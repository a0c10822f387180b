#include "tests/unit/sim/collection_host.h"
#include "tests/unit/support/capture.h"

#include <cstdint>
#include <string>
#include <vector>

namespace korvex {
namespace {

std::uint64_t LiveStores() {
  std::uint64_t live = 0;
  platform::VisitLiveStores(
      [](const char*, std::uint64_t count, void* sum) { *static_cast<std::uint64_t*>(sum) += count; }, &live);
  return live;
}

/// What an inventory asks of the machine fails: each call of an operation once, and then all of them. The fixture finds
/// what is left behind; the sanitizers, what is touched that should not be.
class CollectionTorture : public CollectionHost {
protected:
  /// Lists the arrays, then the LUNs of a controller.
  void Run(const std::string& fault) {
    Describe("[" + fault + "]");
    lists[L"VrxDsmGetTPGInfo"] = {Record(7328, 7328), Record(7328, 7328)};
    lists[L"VrxDsmGetMPGInfo"] = {Record(2126, 2126)};
    lists[L"VrxDsmGetDeviceInfo"] = {Record(60, 60)};
    Capture([] {
      if (!StartChannel()) {
        return;
      }
      GetCurrentNumberOfArrays();
      GetDsmArrayInfo();
      gDetailMode = true;
      gReportSelectionErrors = false;
      ListControllerLuns(1);
    });
    FreeRunBuffers();
    End();
    EXPECT_EQ(LiveStores(), 0U) << fault;
    ASSERT_FALSE(HasFailure()) << fault;
  }

  static std::string Fault(const std::string& operation, const std::string& give, const std::string& occurrence) {
    return R"({"operation": ")" + operation + R"(", "give": ")" + give + R"(", "occurrence": )" + occurrence + "}";
  }
};

TEST_F(CollectionTorture, LeavesNothingBehind) {
  using simhost::CodeFamily;
  Run("");
  for (const simhost::OperationName& operation : simhost::kOperations) {
    const std::string name(operation.name);
    const bool isWmi = operation.family == CodeFamily::kWmi;
    if (!isWmi && operation.family != CodeFamily::kCom && operation.family != CodeFamily::kAllocation) {
      continue;
    }
    const std::uint64_t before = simhost::CallCount(name);
    Run("");
    // Calls of the platform's functions are not counted; none is made more often than this.
    const std::uint64_t calledTimes = isWmi ? simhost::CallCount(name) - before : 60;
    std::vector<std::string> gives = {"0x80041006"};
    if (isWmi) {
      gives.emplace_back("0x80041003");
    }
    if (operation.handsOut) {
      gives.emplace_back("nothing");
    }
    for (const std::string& give : gives) {
      for (std::uint64_t occurrence = 1; occurrence <= calledTimes; ++occurrence) {
        ASSERT_NO_FATAL_FAILURE(Run(Fault(name, give, std::to_string(occurrence))));
      }
      ASSERT_NO_FATAL_FAILURE(Run(Fault(name, give, "\"always\"")));
    }
  }
}

} // namespace
} // namespace korvex
