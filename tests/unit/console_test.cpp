#include "app/cli/console/error_text.h"
#include "app/cli/console/print.h"
#include "app/cli/main_flow.h"
#include "tests/unit/support/capture.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <new>
#include <string>
#ifndef _WIN32
#include <fcntl.h>
#include <unistd.h>
#endif

namespace korvex {
namespace {

TEST(Print, GoesWholeToItsStream) {
  // Around the room that short texts are formatted in, and far above it.
  for (const std::size_t length : {0U, 1022U, 1023U, 1024U, 1025U, 100'000U}) {
    const std::string text(length, 'x');
    const CapturedOutput output = Capture([&] {
      Print("%s|%d\n", text.c_str(), 1);
      PrintToStream(kStandardError, "%s|%d\n", text.c_str(), 2);
    });
    EXPECT_EQ(output.out, text + "|1\n") << length;
    EXPECT_EQ(output.err, text + "|2\n") << length;
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
  const std::string left = RuntimeErrorText();
  dup2(standardOutput, STDOUT_FILENO);
  close(standardOutput);
  close(full);
  EXPECT_EQ(left, "Cannot allocate memory");
}
#endif

TEST(SystemErrorText, IsTheCodeWhereTheSystemHasNone) {
  EXPECT_STREQ(SystemErrorText(0xDEADBEEF), L"0xdeadbeef");
  EXPECT_STREQ(SystemErrorText(0x20000001), L"0x20000001");
}

TEST(RunGuarded, EndsTheRunAfterAnException) {
  int status = 0;
  const auto run = [](int, char**) -> int {
    Print("begun\n");
    throw std::bad_alloc();
  };
  const CapturedOutput output = Capture([&] { status = RunGuarded(run, 0, nullptr); });
  EXPECT_EQ(status, -1);
  EXPECT_EQ(output.out, "begun\n");
  EXPECT_EQ(output.err.rfind("The run cannot go on: ", 0), 0U) << output.err;
}

} // namespace
} // namespace korvex
