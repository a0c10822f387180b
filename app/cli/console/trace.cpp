#include "app/cli/console/trace.h"

#include "app/cli/console/errno_keeper.h"
#include "app/cli/console/print.h"

#include <cstdarg>
#include <cstdio>

namespace korvex {

bool gTraceEnabled = false;

namespace {
char gTraceBuffer[255];
} // namespace

void TracePrint(const char* format, ...) {
  if (!gTraceEnabled) {
    return;
  }
  const ErrnoKeeper errnoKeeper;
  std::va_list values;
  va_start(values, format);
  if (std::vsnprintf(gTraceBuffer, sizeof(gTraceBuffer), format, values) < 0) {
    gTraceBuffer[sizeof(gTraceBuffer) - 1] = '\0';
  }
  va_end(values);
  PrintError("%s", gTraceBuffer);
}

} // namespace korvex
