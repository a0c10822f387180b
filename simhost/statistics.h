#pragma once

#include "simhost/json.h"
#include "simhost/operations.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <string_view>

// What the process has done with the simulated host's COM objects, for leak checks and audits.

namespace simhost {

/// The kinds of interface that the host's objects carry.
enum class InterfaceKind : std::uint8_t { kLocator, kServices, kClassObject, kEnumerator };
inline constexpr std::string_view kInterfaceNames[] = {"IWbemLocator", "IWbemServices", "IWbemClassObject",
                                                       "IEnumWbemClassObject"};

/// Process-wide counters.
struct Statistics {
  /// Objects alive now, by InterfaceKind.
  std::array<std::atomic<std::uint64_t>, std::size(kInterfaceNames)> live{};
  /// Calls of COM methods and of the drives' functions, by position in kOperations.
  std::array<std::atomic<std::uint64_t>, std::size(kOperations)> calls{};
  /// Values that Put took although the documentation does not promise their VARTYPE for the property's CIM type.
  std::atomic<std::uint64_t> coercions{0};
};
Statistics& TheStatistics();

std::uint64_t LiveCount(InterfaceKind kind);
std::uint64_t CallCount(std::string_view operation);

/// The counters and the platform's own as one JSON object: "bstrs", "safearrays", "handles", "interfaces", "stores" (by
/// name), "coercions", "calls" (by operation, those made at all).
Json AuditReport();

} // namespace simhost
