#include "simhost/faults.h"
#include "simhost/operations.h"

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace simhost {
namespace {

struct Call {
  const char* operation;
  const wchar_t* object;
  const wchar_t* member;
};

TEST(FaultsTest, StrikeTheNamedTargetAndOccurrence) {
  constexpr Call kLevel = {"Get", L"Lamp", L"Level"};
  constexpr Call kNote = {"Get", L"Lamp", L"Note"};
  constexpr Call kRed = {"Get", L"Colour", L"Red"};
  constexpr Call kPut = {"Put", L"Lamp", L"Level"};
  const struct {
    std::string rules;
    std::vector<std::pair<Call, std::uint32_t>> calls; ///< each with the code that it gives, 0 for none
  } rows[] = {
      {R"({"operation":"Get","give":"failed"})", {{kLevel, 0x80041001}, {kRed, 0x80041001}, {kPut, 0}}},
      {R"({"operation":"Get","target":"lamp","give":5})", {{kLevel, 5}, {kNote, 5}, {kRed, 0}}},
      {R"({"operation":"Get","target":"LEVEL","give":5})", {{kLevel, 5}, {kNote, 0}}},
      {R"({"operation":"Get","target":"Lamp.Note","give":5})", {{kLevel, 0}, {kNote, 5}}},
      {R"({"operation":"Get","target":"Lamp.","give":5})", {{kLevel, 0}}},
      {R"({"operation":"Get","give":5,"occurrence":2})", {{kLevel, 0}, {kPut, 0}, {kNote, 5}, {kRed, 0}}},
      {R"({"operation":"Get","target":"Note","give":5,"occurrence":2})", {{kNote, 0}, {kLevel, 0}, {kNote, 5}}},
      {R"({"operation":"Get","give":5,"occurrence":[2,3]})", {{kLevel, 0}, {kLevel, 5}, {kLevel, 5}, {kLevel, 0}}},
      {R"({"operation":"Get","give":"0x80041003","occurrence":"always"})", {{kLevel, 0x80041003}, {kRed, 0x80041003}}},
      {R"({"operation":"Get","give":5,"occurrence":1},{"operation":"Get","give":6})", {{kLevel, 5}, {kLevel, 6}}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.rules);
    const Json parsed = ParseJson("[" + row.rules + "]");
    FaultRules faults(Node(parsed, "/faults"));
    for (const auto& [call, code] : row.calls) {
      EXPECT_EQ(faults.Take(OperationIndex(call.operation), call.object, call.member).code.value_or(0), code);
    }
  }
}

} // namespace
} // namespace simhost
