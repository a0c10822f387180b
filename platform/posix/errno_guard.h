#pragma once

#include <cerrno>

namespace platform {

/// Puts errno back at the end of its life, so that the system calls behind a platform call leave no trace in the
/// runtime error text.
class ErrnoGuard {
public:
  ErrnoGuard() noexcept : m_saved(errno) {}
  ErrnoGuard(const ErrnoGuard&) = delete;
  ErrnoGuard& operator=(const ErrnoGuard&) = delete;
  ~ErrnoGuard() { errno = m_saved; }

private:
  int m_saved;
};

} // namespace platform
