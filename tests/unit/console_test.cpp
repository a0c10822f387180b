#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/console/trace.h"
#include "app/cli/main_flow.h"
#include "tests/unit/support/capture.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <new>
#include <string>
#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

namespace korvex {
namespace {

/// Opens or closes the trace for one test.
class TraceSwitch {
public:
  explicit TraceSwitch(bool isOn) { gTraceEnabled = isOn; }
  ~TraceSwitch() { gTraceEnabled = false; }
  TraceSwitch(const TraceSwitch&) = delete;
  TraceSwitch& operator=(const TraceSwitch&) = delete;
};

TEST(Print, GoesWholeToItsStream) {
  // Around the room that short texts are formatted in, and far above it.
  for (const std::size_t length : {0U, 1U, 1022U, 1023U, 1024U, 1025U, 100'000U}) {
    const std::string text(length, 'x');
    const CapturedOutput output = Capture([&] {
      Print("%s|%d\n", text.c_str(), 1);
      PrintError("%s|%d\n", text.c_str(), 2);
      PrintToStream(kStandardOutput, "%s|%d\n", text.c_str(), 3);
      PrintToStream(kStandardError, "%s|%d\n", text.c_str(), 4);
    });
    const auto lines = [&text](const char* first, const char* second) {
      return std::string(text).append(first).append(text).append(second);
    };
    EXPECT_EQ(output.out, lines("|1\n", "|3\n")) << length;
    EXPECT_EQ(output.err, lines("|2\n", "|4\n")) << length;
  }
}

TEST(Trace, PrintsOnlyWhenSwitchedOn) {
  const TraceSwitch off(false);
  const CapturedOutput output = Capture([] { TracePrint("seen %d\n", 1); });
  EXPECT_EQ(output.out + output.err, "");
}

TEST(Trace, CutsALineTo254Bytes) {
  const TraceSwitch on(true);
  for (const std::size_t length : {0U, 252U, 253U, 254U, 255U, 5000U}) {
    const std::string line = std::string(length, 'x') + "\n";
    const CapturedOutput output = Capture([&] { TracePrint("%s", line.c_str()); });
    EXPECT_EQ(output.err, line.substr(0, 254)) << length;
    EXPECT_EQ(output.out, "");
  }
}

TEST(Trace, TakesPercentSignsInValuesAsTheyAre) {
  const TraceSwitch on(true);
  const CapturedOutput output = Capture([] { TracePrint("'%s'\n", "%s%n%d"); });
  EXPECT_EQ(output.err, "'%s%n%d'\n");
}

TEST(RuntimeErrorText, IsTheLibrarys) {
  for (const int number : {ENOENT, ENOMEM, EINVAL}) {
    errno = number;
    const std::string text = RuntimeErrorText();
    EXPECT_EQ(text, std::strerror(number));
  }
}

#ifndef _WIN32
TEST(RuntimeErrorText, OutlivesPrintingThatFails) {
  std::fflush(stdout);
  const int standardOutput = dup(STDOUT_FILENO);
  const int full = open("/dev/full", O_WRONLY);
  ASSERT_GE(dup2(full, STDOUT_FILENO), 0);
  errno = ENOMEM;
  Print("lost\n");
  PrintError("%s", "");
  FlushConsole();
  const int left = errno;
  dup2(standardOutput, STDOUT_FILENO);
  close(standardOutput);
  close(full);
  EXPECT_EQ(left, ENOMEM);
}
#endif

TEST(SystemErrorText, IsTheSystemsOrTheCode) {
  const std::wstring known = SystemErrorText(2);
  ASSERT_GT(known.size(), 2U);
  EXPECT_EQ(known.substr(known.size() - 2), L"\r\n");
  EXPECT_STREQ(SystemErrorText(0xDEADBEEF), L"0xdeadbeef");
  EXPECT_STREQ(SystemErrorText(0x20000001), L"0x20000001");
}

TEST(RunGuarded, GivesTheStatusOrEndsTheRunAfterAnException) {
  EXPECT_EQ(RunGuarded([](int wordCount, char**) { return wordCount + 1; }, 6, nullptr), 7);
  int status = 0;
  const CapturedOutput output = Capture([&] {
    status = RunGuarded(
        [](int, char**) -> int {
          Print("begun\n");
          throw std::bad_alloc();
        },
        0, nullptr);
  });
  EXPECT_EQ(status, -1);
  EXPECT_EQ(output.out, "begun\n");
  EXPECT_EQ(output.err.rfind("The run cannot go on: ", 0), 0U) << output.err;
}

} // namespace
} // namespace korvex
