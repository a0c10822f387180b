#pragma once

#include "platform/error.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace contract {

inline constexpr DWORD kUntouchedError = 0x2000BEEF;
inline constexpr int kUntouchedErrno = 113;

/// Marks the last error and errno, so that a test sees whether a call has touched them.
inline void SetMarkers() {
  SetLastError(kUntouchedError);
  errno = kUntouchedErrno;
}

/// The last error as the call since SetMarkers left it; errno must be as it was.
inline DWORD LastErrorOnly() {
  EXPECT_EQ(kUntouchedErrno, errno);
  return GetLastError();
}

} // namespace contract
