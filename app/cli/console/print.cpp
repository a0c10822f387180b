#include "app/cli/console/print.h"

#include "app/cli/console/errno_keeper.h"
#include "app/cli/console/formatted_text.h"

#include <cstdarg>
#include <cstdio>

namespace korvex {

namespace {

/// Room for a long report between two writes; it must outlive the last flush of the runtime library.
char gOutputBuffer[64 * 1024];

/// Formats first and writes the piece whole: standard error is unbuffered, and a piece should reach it in one write.
__attribute__((format(printf, 2, 0))) void PrintValues(int stream, const char* format, std::va_list values) {
  const ErrnoKeeper errnoKeeper;
  const FormattedText text(format, values);
  if (stream == kStandardError) {
    std::fflush(stdout);
    std::fwrite(text.Text(), 1, text.Length(), stderr);
    std::fflush(stderr);
  } else {
    std::fwrite(text.Text(), 1, text.Length(), stdout);
  }
}

} // namespace

void Print(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  PrintValues(kStandardOutput, format, values);
  va_end(values);
}

void PrintError(const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  PrintValues(kStandardError, format, values);
  va_end(values);
}

void PrintToStream(int stream, const char* format, ...) {
  std::va_list values;
  va_start(values, format);
  PrintValues(stream, format, values);
  va_end(values);
}

void SetUpConsole() {
  const ErrnoKeeper errnoKeeper;
  std::setvbuf(stdout, gOutputBuffer, _IOFBF, sizeof(gOutputBuffer));
}

void FlushConsole() {
  const ErrnoKeeper errnoKeeper;
  std::fflush(stdout);
}

} // namespace korvex
