#include "simhost/state_log.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

namespace simhost {
namespace {

class StateLogTest : public ::testing::Test {
protected:
  StateLogTest() {
    std::string name = (std::filesystem::temp_directory_path() / "state_log_XXXXXX").string();
    m_directory = mkdtemp(name.data());
    m_path = m_directory + "/host.state.jsonl";
  }
  ~StateLogTest() override { std::filesystem::remove_all(m_directory); }

  std::string Contents() const {
    std::ifstream file(m_path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  void Write(const std::string& text) const { std::ofstream(m_path, std::ios::binary) << text; }

  std::string m_directory;
  std::string m_path;
};

TEST_F(StateLogTest, WritesALineAtOnceAndReplaysIt) {
  StateLog log(m_path);
  EXPECT_FALSE(std::filesystem::exists(m_path));
  log.Set("dsms/0/debugLevel", 7);
  EXPECT_EQ(Contents(), "{\"set\":{\"dsms/0/debugLevel\":7}}\n");
  log.Update([](StateChange& change) {
    change.Set("a", true);
    change.Set("b", "text");
    change.Clear("dsms/0/debugLevel");
    EXPECT_EQ(change.Find("dsms/0/debugLevel"), nullptr);
    EXPECT_NE(change.Find("a"), nullptr);
  });
  log.Update([](StateChange&) {});
  EXPECT_EQ(Contents(), "{\"set\":{\"dsms/0/debugLevel\":7}}\n"
                        "{\"set\":{\"a\":true,\"b\":\"text\"},\"clear\":[\"dsms/0/debugLevel\"]}\n");
  const StateLog again(m_path);
  EXPECT_EQ(again.Number("dsms/0/debugLevel", 42), 42U);
  EXPECT_TRUE(again.Flag("a", false));
  EXPECT_EQ(again.Find("b"), Json("text"));
}

TEST_F(StateLogTest, RemovingTheFileGivesTheFreshMachineBack) {
  StateLog log(m_path);
  log.Set("level", 7);
  std::filesystem::remove(m_path);
  log.Refresh();
  EXPECT_EQ(log.Number("level", 1), 1U);
  log.Set("other", 2);
  EXPECT_EQ(Contents(), "{\"set\":{\"other\":2}}\n");
}

TEST_F(StateLogTest, PassesOverADamagedLastLineAndReplacesIt) {
  for (const std::string tail :
       {"{\"set\":{\"le", "{\"set\":{\"le\n", "rubbish\n", "{\"set\":{\"level\":9}}", "[1]\n"}) {
    SCOPED_TRACE(tail);
    Write("{\"set\":{\"level\":7}}\n" + tail);
    StateLog log(m_path);
    EXPECT_EQ(log.Number("level", 1), 7U);
    log.Set("other", 2);
    EXPECT_EQ(Contents(), "{\"set\":{\"level\":7}}\n{\"set\":{\"other\":2}}\n");
  }
}

TEST_F(StateLogTest, NamesTheLineOfOtherDamage) {
  Write("{\"set\":{\"a\":1}}\n{\"set\":5}\n{\"set\":{\"b\":1}}\n");
  try {
    const StateLog log(m_path);
    ADD_FAILURE() << "not refused";
  } catch (const StateError& error) {
    EXPECT_EQ(std::string(error.what()), "host.state.jsonl: line 2: no change of the machine's state");
  }
}

TEST_F(StateLogTest, SaysWhatTheSystemRefuses) {
  std::filesystem::create_directory(m_path);
  EXPECT_THROW(StateLog(m_path).Set("a", 1), StateError);
}

TEST_F(StateLogTest, CompactsToALinePerKey) {
  StateLog log(m_path);
  StateLog other(m_path);
  for (std::uint64_t i = 0; i < kCompactionLines; ++i) {
    log.Set(i % 2 == 0 ? "even" : "odd", i);
  }
  EXPECT_GT(Contents().size(), 10'000U);
  log.Set("last", 1);
  EXPECT_EQ(Contents(), "{\"set\":{\"even\":998}}\n{\"set\":{\"last\":1}}\n{\"set\":{\"odd\":999}}\n");
  other.Set("other", 2);
  log.Refresh();
  EXPECT_EQ(log.Number("other", 0), 2U);
  EXPECT_EQ(other.Number("even", 0), 998U);
}

TEST_F(StateLogTest, RunsCountTogether) {
  constexpr int kRuns = 4;
  constexpr int kChanges = 400;
  std::vector<std::thread> runs;
  runs.reserve(kRuns);
  for (int run = 0; run < kRuns; ++run) {
    runs.emplace_back([this] {
      StateLog log(m_path);
      for (int i = 0; i < kChanges; ++i) {
        log.Update([](StateChange& change) {
          const Json* count = change.Find("count");
          change.Set("count", (count == nullptr ? 0 : *count->IfUnsigned()) + 1);
        });
      }
    });
  }
  for (std::thread& run : runs) {
    run.join();
  }
  EXPECT_EQ(StateLog(m_path).Number("count", 0), static_cast<std::uint64_t>(kRuns * kChanges));
}

TEST_F(StateLogTest, KeepsChangesInMemoryWithoutAPath) {
  StateLog log{std::string()};
  log.Set("level", 7);
  log.Refresh();
  EXPECT_EQ(log.Number("level", 1), 7U);
}

} // namespace
} // namespace simhost
