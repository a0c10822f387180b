#pragma once

#include "simhost/host.h"
#include "simhost/option_model.h"
#include "simhost/provider.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace simhost {

/// What an option may ask about the DSM's paths: whether one with this identifier (its low 32 bits) exists, and whether
/// it can be changed now.
enum class PathCondition { kUnknown, kReady, kInTransition };
using PathQuestion = std::function<PathCondition(std::uint32_t pathId)>;

/// The feature options of one DSM: read and set through its method VrxOptionControlRequest, and what has been set kept
/// in the host's state.
class DriverOptions {
public:
  /// `stateKey` is the prefix of the DSM's state keys, with its slash.
  DriverOptions(Host& host, OptionsModel model, std::string stateKey, PathQuestion askPath);

  /// Adds the classes that the method's objects have.
  static void AddClasses(Repository& repository);

  HRESULT Control(const MethodCall& call, CimObject* output);

  /// Whether anything that was set changes what is told of LUNs.
  bool ChangesLuns() const;
  /// The value of the variable LoadBalancePolicy once it was set.
  std::optional<std::uint32_t> Policy() const;
  /// Whether the path with this identifier was taken offline.
  bool IsOffline(std::uint32_t pathId) const;

private:
  HRESULT Read(std::uint32_t bufferSize, CimObject& answer);
  HRESULT Apply(const CimObject& request, CimObject& answer);
  /// What becomes of one detail that is to be applied.
  CimObject ApplyDetail(const CimObject& detail, StateChange& change) const;
  std::uint32_t ActOn(const OptionModel& option, std::uint32_t value, StateChange& change) const;
  CimObject Listed(const OptionModel& option) const;
  std::uint32_t CurrentValue(const OptionModel& option) const;
  std::wstring Answered(std::wstring_view keyword) const;
  std::string OptionKey(std::wstring_view keyword) const;
  std::string PathKey(std::uint32_t pathId) const;

  Host& m_host;
  OptionsModel m_model;
  std::string m_stateKey;
  PathQuestion m_askPath;
  std::size_t m_reads = 0; ///< read requests so far
};

} // namespace simhost
