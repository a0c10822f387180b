#include "bench/standard_output.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

namespace {

int Opened(int file) {
  if (file < 0) {
    std::perror("standard output cannot be redirected");
    std::exit(1);
  }
  return file;
}

} // namespace

RedirectedOutput::RedirectedOutput(int file, int stream) : m_stream(stream), m_saved(Opened(dup(stream))) {
  std::fflush(stdout);
  dup2(Opened(file), m_stream);
  close(file);
}

RedirectedOutput::~RedirectedOutput() {
  std::fflush(stdout);
  dup2(m_saved, m_stream);
  close(m_saved);
}

SilentOutput::SilentOutput(int stream) : m_redirection(open("/dev/null", O_WRONLY), stream) {}

std::string CapturedOutput(void (&print)()) {
  std::FILE* file = std::tmpfile();
  if (file == nullptr) {
    std::perror("no temporary file");
    std::exit(1);
  }
  {
    const RedirectedOutput redirection(dup(fileno(file)));
    print();
  }
  std::rewind(file);
  std::string text;
  char part[65536];
  std::size_t bytes = 0;
  while ((bytes = std::fread(part, 1, sizeof part, file)) != 0) {
    text.append(part, bytes);
  }
  std::fclose(file);
  return text;
}
