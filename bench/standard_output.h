#pragma once

#include <string>

/// Sends standard output, or the stream of another descriptor, elsewhere while it lives.
class RedirectedOutput {
public:
  explicit RedirectedOutput(int file, int stream = 1);
  ~RedirectedOutput();
  RedirectedOutput(const RedirectedOutput&) = delete;
  RedirectedOutput& operator=(const RedirectedOutput&) = delete;

private:
  int m_stream;
  int m_saved;
};

/// Throws standard output or another stream away while it lives, so that the terminal is not measured.
class SilentOutput {
public:
  explicit SilentOutput(int stream = 1);

private:
  RedirectedOutput m_redirection;
};

/// All that `print` writes to standard output.
std::string CapturedOutput(void (&print)());
