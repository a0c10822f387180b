#include "simhost/state_log.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <thread>
#include <unistd.h>

// What several users of one state file see of each other. What one run writes and reads is shown by transcripts.

namespace simhost {
namespace {

class StateLogTest : public ::testing::Test {
protected:
  StateLogTest() { std::filesystem::remove(m_path); }
  ~StateLogTest() override { std::filesystem::remove(m_path); }

  const std::string m_path = "state_log_test." + std::to_string(getpid()) + ".jsonl";
};

TEST_F(StateLogTest, CompactsToALinePerKey) {
  StateLog log(m_path);
  StateLog other(m_path);
  for (std::uint64_t i = 0; i < kCompactionLines; ++i) {
    log.Set(i % 2 == 0 ? "even" : "odd", i);
  }
  log.Set("last", 1);
  std::ifstream file(m_path, std::ios::binary);
  const std::string contents{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  EXPECT_EQ(contents, "{\"set\":{\"even\":998}}\n{\"set\":{\"last\":1}}\n{\"set\":{\"odd\":999}}\n");
  other.Set("other", 2);
  log.Refresh();
  EXPECT_EQ(log.Number("other", 0), 2U);
  EXPECT_EQ(other.Number("even", 0), 998U);
  std::filesystem::remove(m_path);
  log.Refresh();
  EXPECT_EQ(log.Number("even", 0), 0U) << "removing the file gives the fresh machine back";
}

TEST_F(StateLogTest, RunsCountTogether) {
  constexpr int kChanges = 400;
  std::thread runs[4];
  for (std::thread& run : runs) {
    run = std::thread([this] {
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
  EXPECT_EQ(StateLog(m_path).Number("count", 0), std::size(runs) * kChanges);
}

} // namespace
} // namespace simhost
