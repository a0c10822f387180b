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

/// What an inventory asks of the machine fails: each call of an operation alone, and with all that follow. The fixture
/// finds what is left behind; the sanitizers, what is touched that should not be.
class CollectionTorture : public CollectionHost {
protected:
  /// Lists the arrays, then the LUNs of a controller; gives what is printed.
  std::string Run(const std::string& fault) {
    Describe("[" + fault + "]");
    lists[L"VrxDsmGetTPGInfo"] = {Record(7328, 7328), Record(7328, 7328)};
    lists[L"VrxDsmGetMPGInfo"] = {Record(2126, 2126)};
    lists[L"VrxDsmGetDeviceInfo"] = {Record(60, 60)};
    const CapturedOutput printed = Capture([] {
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
    return printed.out + printed.err;
  }

  static std::string Fault(const std::string& operation, const std::string& give, const std::string& occurrence) {
    return R"({"operation": ")" + operation + R"(", "give": ")" + give + R"(", "occurrence": )" + occurrence + "}";
  }
};

TEST_F(CollectionTorture, LeavesNothingBehind) {
  const std::string unharmed = Run("");
  for (const simhost::OperationName& operation : simhost::kOperations) {
    const std::string name(operation.name);
    std::vector<std::string> gives = {"0x80041006"};
    if (operation.family == simhost::CodeFamily::kWmi) {
      gives.emplace_back("0x80041003");
    }
    if (operation.handsOut) {
      gives.emplace_back("nothing");
    }
    for (const std::string& give : gives) {
      // Until it does not matter any more that every further call fails.
      for (int call = 1; Run(Fault(name, give, "[" + std::to_string(call) + ", 100000]")) != unharmed; ++call) {
        Run(Fault(name, give, std::to_string(call)));
        ASSERT_FALSE(HasFailure());
      }
    }
  }
}

} // namespace
} // namespace korvex
