#pragma once

#include "simhost/clock.h"
#include "simhost/description.h"
#include "simhost/disks.h"
#include "simhost/faults.h"
#include "simhost/overrides.h"
#include "simhost/registry.h"
#include "simhost/repository.h"
#include "simhost/state_log.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// The simulated host as a whole: what its description says, what has become of it, and its repository.

namespace simhost {

/// The machine's name; a form that is none makes the question for it fail.
struct ComputerName {
  std::optional<std::wstring> name;
  std::optional<std::wstring> domain;
};

/// A DSM that the framework knows because it is installed.
struct InstalledDsm {
  std::wstring name;
  std::uint64_t context = 0;
  std::uint32_t version[4] = {}; ///< major, minor, build, QFE
};

struct Host {
  /// A host that has the system's own classes only; `statePath` empty keeps changes in memory.
  explicit Host(const std::string& statePath);
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  StateLog state;
  std::unique_ptr<Clock> clock;
  FaultRules faults;
  OverrideRules overrides;
  ComputerName computer;
  bool deviceTreeRoot = true; ///< the device tree has a root
  std::vector<InstalledDsm> installedDsms;
  Disks disks;
  Registry registry{state};
  Repository repository; ///< last: its providers refer to what stands above

  /// Waits out the delay of an outcome and gives its result.
  HRESULT Finish(const Outcome& outcome) {
    if (outcome.delay != 0) {
      clock->Wait(outcome.delay);
    }
    return outcome.result;
  }
};

/// A top-level key of the description and what reads it: adds classes with their providers to `host.repository`. Called
/// for each description, also when the key is absent; what is wrong is refused with DescriptionError. Node places stay
/// valid only during the call.
struct HostSection {
  std::string_view key;
  void (*build)(const Node& section, Host& host);
};

/// The sections beside those that every host has ("computer", "clock", "deviceTree", "faults", "overrides"), in the
/// order in which they are built. Defined in host_sections.cpp.
std::span<const HostSection> HostSections();

/// A host from the text of its description. Throws DescriptionError, JsonError or StateError.
std::unique_ptr<Host> ReadHost(std::string_view description, const std::string& statePath);
/// A machine without description: the real clock, neither DSM nor MPIO, changes kept in memory.
std::unique_ptr<Host> MakeBareHost(std::wstring computerName);

} // namespace simhost
