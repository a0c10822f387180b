#include "bench/made_host.h"

#include <cstdio>
#include <cstdlib>

std::string MadeHost(int arrays, int luns, int paths, int generation) {
  const std::string command = std::string(KORVEX_MAKEHOST) + " --arrays " + std::to_string(arrays) + " --luns " +
                              std::to_string(luns) + " --paths " + std::to_string(paths) + " --generation " +
                              std::to_string(generation) + " --seed 1";
  std::FILE* output = popen(command.c_str(), "r");
  std::string text;
  if (output != nullptr) {
    char part[65536];
    std::size_t bytes = 0;
    while ((bytes = std::fread(part, 1, sizeof part, output)) != 0) {
      text.append(part, bytes);
    }
  }
  if (output == nullptr || pclose(output) != 0) {
    std::fprintf(stderr, "cannot run: %s\n", command.c_str());
    std::exit(1);
  }
  return text;
}
