#pragma once

#include <cerrno>

namespace korvex {

/// Gives errno its value back at the end of a scope, so that printing does not decide the runtime error text of a later
/// message.
class ErrnoKeeper {
public:
  ErrnoKeeper() : m_saved(errno) {}
  ~ErrnoKeeper() { errno = m_saved; }
  ErrnoKeeper(const ErrnoKeeper&) = delete;
  ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

private:
  int m_saved;
};

} // namespace korvex
