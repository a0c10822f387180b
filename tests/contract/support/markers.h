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

/// What a call gives, and the last error that it leaves.
struct Left {
  int result;
  DWORD lastError;
  bool operator==(const Left&) const = default;
};

template <class Call>
Left Try(const Call& call) {
  SetMarkers();
  const auto result = static_cast<int>(call());
  return {result, LastErrorOnly()};
}

/// A call that succeeds leaves the last error alone; one that fails gives 0 and sets it.
inline Left Succeeds(int result = 1) {
  return {result, kUntouchedError};
}
inline Left Fails(DWORD error) {
  return {0, error};
}

inline std::ostream& operator<<(std::ostream& out, const Left& left) {
  return out << left.result << " with the last error " << left.lastError;
}

} // namespace contract
