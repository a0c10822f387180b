#include "tests/unit/support/capture.h"

#include <fstream>
#include <gtest/gtest.h>

namespace korvex {

namespace {

/// Keeps what was printed for the message coverage, in builds that look at it.
void KeepPrinted([[maybe_unused]] const char* file, [[maybe_unused]] const std::string& text) {
#ifdef KORVEX_PRINTED_DIR
  std::ofstream(std::string(KORVEX_PRINTED_DIR "/") + file, std::ios::app | std::ios::binary) << text + "\n";
#endif
}

} // namespace

CapturedOutput Capture(const std::function<void()>& action) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  action();
  CapturedOutput output;
  output.err = testing::internal::GetCapturedStderr();
  output.out = testing::internal::GetCapturedStdout();
  KeepPrinted("unit.stdout", output.out);
  KeepPrinted("unit.stderr", output.err);
  return output;
}

} // namespace korvex
