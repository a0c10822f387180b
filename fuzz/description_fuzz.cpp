#include "fuzz/input.h"
#include "fuzz/whole_run.h"
#include "simhost/host.h"

// The ready-made hosts' descriptions with changes in their text, and a run on what is still a host.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzzing::Input input(bytes, size);
  const auto& commandLine = input.OneOf(fuzzing::CommandLines());
  const std::string text = input.Edited(input.OneOf(fuzzing::ReadyMadeHosts()).Write());
  try {
    // Waiting for the real time would only take long.
    const simhost::Json clock = simhost::Json::Object{{"kind", "virtual"}};
    const std::string description = fuzzing::With(simhost::ParseJson(text), {{"clock", clock}}).Write();
    fuzzing::RunOn(simhost::ReadHost(description, ""), commandLine);
  } catch (const simhost::JsonError&) {
    // Refused, as it should be.
  } catch (const simhost::DescriptionError&) {
    // Likewise.
  }
  fuzzing::RemoveFiles();
  return 0;
}
