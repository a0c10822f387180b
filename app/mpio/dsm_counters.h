#pragma once

#include "platform/allocation.h"
#include "wmi/orb_wmi_class.h"
#include "wmi/orb_wmi_enumerator.h"
#include "wmi/orb_wmi_request.h"
#include "wmi/orb_wmi_variant.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace korvex {

/// The timing counters that the MPIO framework keeps for one DSM, and what is to become of them. A counter that could
/// not be read is 0.
struct DsmCounters {
  std::uint32_t PathVerificationPeriod = 0; ///< seconds
  std::uint32_t RetryCount = 0;
  std::uint32_t RetryInterval = 0;     ///< seconds
  std::uint32_t PathVerifyEnabled = 0; ///< 0 or 1
  std::uint32_t PDORemovePeriod = 0;   ///< seconds
  bool applyCounters = true;           ///< they are to be written back
};

/// How a step of the command left it.
enum class CountersStep {
  kDone,
  kNotThere, ///< the framework does not know the DSM, or keeps nothing for it
  kFailed,
};

/// What the command works with, each made when its turn comes and all released at the end.
struct MpioObjects {
  struct EnumeratorRelease {
    void operator()(OrbWmiEnumerator* enumerator) const noexcept { platform::DeleteObject(enumerator); }
  };
  using OwnedEnumerator = std::unique_ptr<OrbWmiEnumerator, EnumeratorRelease>;

  std::optional<OrbWmiClass> parametersClass;
  std::optional<OrbWmiClass> methodsClass;
  std::optional<OrbWmiClass> countersClass;
  std::optional<OrbWmiEnumerator> framework;
  OwnedEnumerator dsms;     ///< stands on one DSM's parameters
  OwnedEnumerator counters; ///< stands on its counters
  std::optional<OrbWmiEnumerator> target;
  std::optional<OrbWmiEnumerator> newCounters;
  std::optional<OrbWmiVariant> context;
  std::optional<OrbWmiVariant> newCountersHolder;
  std::optional<OrbWmiRequest> request;
};

/// Reads the counters of the DSM with the context gRequestedDsmContext from the framework, on the channel's connection.
CountersStep ReadDsmCounters(MpioObjects& objects, DsmCounters& counters);

/// Writes all counters of that DSM; false on failure.
bool SetDsmCounters(MpioObjects& objects, const DsmCounters& counters);

} // namespace korvex
