#pragma once

#include "simhost/driver_model.h"
#include "simhost/driver_options.h"
#include "simhost/host.h"
#include "simhost/provider.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace simhost {

/// One DSM: its methods class's instance, and its methods answered from its arrays. What is set or scanned is recorded
/// in the host's state.
class DriverProvider : public Provider {
public:
  DriverProvider(Host& host, DriverModel driver);

  Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override;
  Outcome ExecuteMethod(const MethodCall& call, CimObject* output) override;

private:
  using Method = HRESULT (DriverProvider::*)(const MethodCall& call, CimObject* output);
  struct MethodRow {
    std::wstring_view name;
    Method run;
  };
  static const MethodRow kMethods[];

  /// What makes an answer of a module.
  using ModuleAnswer = std::function<CimObject(const Repository& repository, const ModuleModel& module)>;

  HRESULT GiveNumber(const MethodCall& call, CimObject* output);
  HRESULT GiveVersion(const MethodCall& call, CimObject* output);
  HRESULT GiveArrays(const MethodCall& call, CimObject* output);
  HRESULT GiveControllers(const MethodCall& call, CimObject* output);
  HRESULT GiveLuns(const MethodCall& call, CimObject* output);
  HRESULT GiveDevices(const MethodCall& call, CimObject* output);
  HRESULT GiveModule(const MethodCall& call, CimObject* output);
  HRESULT GiveModuleControllers(const MethodCall& call, CimObject* output);
  HRESULT GiveModuleDisks(const MethodCall& call, CimObject* output);
  HRESULT GiveModuleStatus(const MethodCall& call, CimObject* output);
  HRESULT SetDebugLevel(const MethodCall& call, CimObject* output);
  HRESULT SetErrorLevel(const MethodCall& call, CimObject* output);
  HRESULT PerformScan(const MethodCall& call, CimObject* output);
  HRESULT ControlOptions(const MethodCall& call, CimObject* output);

  /// Gives the answer about the module that the call names; fails when there is none of that id.
  HRESULT GiveOfModule(const MethodCall& call, CimObject& output, const ModuleAnswer& answer);
  /// The arrays that a call's input selects; none when it selects nothing, which fails the method.
  std::vector<const ArrayModel*> Select(const MethodCall& call) const;
  /// The designation of the controller that owns the LUN now; `described` is the one that owned it at first.
  std::uint32_t CurrentOwner(std::uint32_t arrayId, std::size_t lunIndex, std::uint64_t described) const;
  /// Makes the preferred controller the LUN's owner.
  void MoveHome(std::uint32_t arrayId, std::size_t lunIndex, std::uint64_t described, std::uint64_t preferred,
                StateChange& change) const;
  std::string OwnerKey(std::uint32_t arrayId, std::size_t lunIndex) const;
  std::string StateKey(std::string_view key) const;

  /// Whether a path of the DSM's arrays has this identifier (its low 32 bits), and whether its array can change now.
  PathCondition ConditionOf(std::uint32_t pathId) const;
  /// The LUN as the options that were set have made it.
  LunModel CurrentLun(const LunModel& lun) const;

  Host& m_host;
  DriverModel m_driver;
  DriverOptions m_options;
};

} // namespace simhost
