#include <cstdio>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

// Runs the program that the words name and writes its peak memory in KiB to standard error. A process begins with the
// peak of the one that it was spawned from, so only a small one can tell the peak of others.

extern char** environ;

int main(int wordCount, char** words) {
  pid_t child = 0;
  if (wordCount < 2 || posix_spawn(&child, words[1], nullptr, nullptr, words + 1, environ) != 0) {
    return 1;
  }
  int status = 0;
  rusage usage = {};
  if (wait4(child, &status, 0, &usage) != child || !WIFEXITED(status)) {
    return 1;
  }
  std::fprintf(stderr, "peak_KiB %ld\n", usage.ru_maxrss);
  return 0;
}
