#include "fuzz/input.h"
#include "platform/posix/machine.h"
#include "simhost/description.h"
#include "simhost/state_log.h"

#include <cstdlib>
#include <fstream>

// A log of a host's changes with changes in its text: it is taken in, changed and taken in again.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static constexpr char kLog[] = R"({"set":{"deviceTree/reenumerations":1}}
{"set":{"a/key":"value","another/key":[1,-2,3.5,null,true]},"clear":["deviceTree/reenumerations"]}
{"set":{"registry/SYSTEM":{"values":{"Site":"north"},"created":true}}}
)";
  fuzzing::Input input(bytes, size);
  const std::string path = (platform::ExecutableDirectory() / "fuzzed.state.jsonl").string();
  std::ofstream(path, std::ios::binary) << input.Edited(kLog);
  try {
    simhost::StateLog log(path);
    log.Set("dsms/0/debugLevel", 5);
    const simhost::StateLog again(path);
    if (again.Number("dsms/0/debugLevel", 0) != 5) {
      std::abort();
    }
  } catch (const simhost::StateError&) {
    // Refused, as it should be.
  }
  return 0;
}
