#pragma once

#include <string>

/// Sends standard output elsewhere while it lives.
class RedirectedOutput {
public:
  explicit RedirectedOutput(int file);
  ~RedirectedOutput();
  RedirectedOutput(const RedirectedOutput&) = delete;
  RedirectedOutput& operator=(const RedirectedOutput&) = delete;

private:
  int m_saved;
};

/// Throws standard output away while it lives, so that the terminal is not measured.
class SilentOutput {
public:
  SilentOutput();

private:
  RedirectedOutput m_redirection;
};

/// All that `print` writes to standard output.
std::string CapturedOutput(void (&print)());
