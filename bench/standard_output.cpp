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

RedirectedOutput::RedirectedOutput(int file) : m_saved(Opened(dup(1))) {
  std::fflush(stdout);
  dup2(Opened(file), 1);
  close(file);
}

RedirectedOutput::~RedirectedOutput() {
  std::fflush(stdout);
  dup2(m_saved, 1);
  close(m_saved);
}

SilentOutput::SilentOutput() : m_redirection(open("/dev/null", O_WRONLY)) {}

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
