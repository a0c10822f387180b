#include "simhost/provider.h"

namespace simhost {

const CimValue& MethodCall::Input(std::wstring_view name) const {
  static const CimValue null;
  return input == nullptr ? null : input->Value(name);
}

Outcome Provider::EnumerateInstances(const ClassRef& /*definition*/, std::vector<CimObject>& /*instances*/) {
  return {};
}

Outcome Provider::ExecuteMethod(const MethodCall& /*call*/, CimObject* /*output*/) {
  return {WBEM_E_NOT_SUPPORTED};
}

Outcome Provider::PutInstance(const CimObject& /*instance*/) {
  return {WBEM_E_NOT_SUPPORTED};
}

} // namespace simhost
