#pragma once

#include "simhost/cim.h"

#include <cstdint>
#include <vector>

// What stands behind the classes of the repository.

namespace simhost {

/// A method call as the repository hands it over: names, path, types and presence are checked, values are coerced to
/// the types that the method declares, embedded objects are of the declared class.
struct MethodCall {
  const CimObject& instance; ///< the existing instance that the path names
  const MethodDefinition& method;
  const CimObject* input; ///< none when the method has no inputs or the caller gave none

  /// The input parameter of that name; null when it was not given.
  const CimValue& Input(std::wstring_view name) const;
};

/// How a call ended: a WMI result, and the milliseconds that the driver took (waited out on the host's clock after the
/// call).
struct Outcome {
  HRESULT result = WBEM_S_NO_ERROR;
  std::uint32_t delay = 0;
};

/// The instances and methods of one class or several. The repository calls a provider one call at a time and checks
/// everything general before; what a provider throws becomes WBEM_E_PROVIDER_FAILURE.
///
///   class DebugLevelProvider : public Provider {
///     Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances) override {
///       instances.emplace_back(definition).Set(L"InstanceName", L"ROOT\\DSM\\0000_0").Set(L"Active", true);
///       return {};
///     }
///     Outcome ExecuteMethod(const MethodCall& call, CimObject* output) override {
///       m_host.state.Set("dsms/0/debugLevel", call.Input(L"DebugLevel").Number());
///       return {};
///     }
///   };
class Provider {
public:
  virtual ~Provider() = default;

  /// Appends the instances of the class in their order; none by default.
  virtual Outcome EnumerateInstances(const ClassRef& definition, std::vector<CimObject>& instances);

  /// Carries out a method and fills `output` (none for a method without outputs; its values are null at first).
  /// WBEM_E_NOT_SUPPORTED by default.
  virtual Outcome ExecuteMethod(const MethodCall& call, CimObject* output);

  /// Takes over the values of an instance that exists. WBEM_E_NOT_SUPPORTED by default.
  virtual Outcome PutInstance(const CimObject& instance);
};

} // namespace simhost
