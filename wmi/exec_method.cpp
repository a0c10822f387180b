#include "platform/com_owners.h"
#include "wmi/call_status.h"
#include "wmi/category_trace.h"
#include "wmi/orb_wmi_request.h"

// The execution of a method request.

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kRequest};

using ObjectPtr = platform::ComPtr<IWbemClassObject>;

/// The objects of one call; released together at its end.
struct MethodCall {
  IWbemServices* services;
  const platform::Bstr& methodName;
  ObjectPtr inSignature;
  ObjectPtr outSignature;
  ObjectPtr inParameters;
  ObjectPtr outParameters;
};

/// Learns the method's signatures and makes its parameter objects.
wmiReturn PrepareParameters(MethodCall& call, IWbemClassObject* definition) {
  HRESULT result = definition->GetMethod(call.methodName.get(), 0, call.inSignature.put(), call.outSignature.put());
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(GetMethod).  Error 0x%x\n", Hex(result));
    return StatusOfFailure(result);
  }
  if (call.inSignature) {
    result = call.inSignature->SpawnInstance(0, call.inParameters.put());
    if (FAILED(result) || !call.inParameters) {
      kTrace.Error("WMIRequestFailed(SpawnInstance)-InputMethod.  Error 0x%x\n", Hex(result));
      return StatusOfFailure(result);
    }
  }
  if (call.outSignature) {
    result = call.outSignature->SpawnInstance(0, call.outParameters.put());
    if (FAILED(result) || !call.outParameters) {
      kTrace.Error("WMIRequestFailed(SpawnInstance)-OutputMethod.  Error 0x%x\n", Hex(result));
      return StatusOfFailure(result);
    }
  }
  return kWmiSuccess;
}

wmiReturn PutInputs(MethodCall& call, const std::vector<OrbRequestParameter*>& parameters) {
  if (!call.inParameters) {
    return kWmiSuccess;
  }
  for (const OrbRequestParameter* parameter : parameters) {
    const platform::Bstr name(parameter->GetName());
    if (!name) {
      kTrace.Error("MemoryAllocationFailed(SysAllocString)-GetInputArgumentName\n");
      return kWmiOutOfMemory;
    }
    kTrace.Detail("Name(%s);Variant(0x%s)\n", NarrowText(name.get()).c_str(),
                  PointerText(parameter->GetValue()).c_str());
    const HRESULT result = call.inParameters->Put(name.get(), 0, &parameter->GetValue()->GetVariant(), 0);
    if (FAILED(result)) {
      kTrace.Error("WMIRequestFailed(Put).  Error 0x%x\n", Hex(result));
      return StatusOfFailure(result);
    }
  }
  return kWmiSuccess;
}

wmiReturn Execute(MethodCall& call, IWbemClassObject* instance, MethodOutcome& outcome) {
  platform::Variant path;
  HRESULT result = instance->Get(L"__RELPATH", 0, path.put(), nullptr, nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Get)-EnumeratorInstance.  Error 0x%x\n", Hex(result));
    return StatusOfFailure(result);
  }
  kTrace.Detail("ExecMethod()\n");
  BSTR pathText = path.get().vt == VT_BSTR ? path.get().bstrVal : nullptr;
  result = call.services->ExecMethod(pathText, call.methodName.get(), 0, nullptr, call.inParameters.get(),
                                     call.outParameters.put(), nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(ExecMethod).  Error 0x%x\n", Hex(result));
    outcome = pathText != nullptr && IsAnswerOfProvider(result) ? MethodOutcome::kRefused : MethodOutcome::kUnknown;
    return StatusOfFailure(result);
  }
  outcome = call.outParameters ? MethodOutcome::kAnswered : MethodOutcome::kEmpty;
  return kWmiSuccess;
}

wmiReturn GetOutputs(MethodCall& call, const std::vector<OrbRequestParameter*>& parameters) {
  if (!call.outParameters) {
    return kWmiSuccess;
  }
  for (const OrbRequestParameter* parameter : parameters) {
    const platform::Bstr name(parameter->GetName());
    if (!name) {
      kTrace.Error("MemoryAllocationFailed(SysAllocString)-.\n");
      return kWmiOutOfMemory;
    }
    kTrace.Detail("Name(%s);Variant(0x%s)\n", NarrowText(name.get()).c_str(),
                  PointerText(parameter->GetValue()).c_str());
    // Zeroed whole, as a narrow number may later be read as a wider one.
    VARIANT value = {};
    VariantInit(&value);
    CIMTYPE cimType = CIM_EMPTY;
    const HRESULT result = call.outParameters->Get(name.get(), 0, &value, &cimType, nullptr);
    if (FAILED(result)) {
      VariantClear(&value);
      kTrace.Error("WmiRequestFailed(Get)-OutputParams.  Error 0x%x\n", Hex(result));
      return StatusOfFailure(result);
    }
    parameter->GetValue()->Clear();
    parameter->GetValue()->GetVariant() = value;
    kTrace.Detail("CimType(0x%x);VarType(0x%x)\n", static_cast<unsigned>(cimType), value.vt);
  }
  return kWmiSuccess;
}

} // namespace

wmiReturn OrbWmiRequest::ExecMethod(OrbWmiEnumerator* target) {
  IWbemServices* services = m_Class == nullptr ? nullptr : m_Class->GetServices();
  if (services == nullptr) {
    kTrace.Error("NoServiceConnection(OrbRequest)\n");
    return kWmiNotDefined;
  }
  const platform::Bstr methodName(m_Text);
  if (!methodName) {
    kTrace.Error("MemoryAllocationFailed(SysAllocString)-MethodName\n");
    return kWmiOutOfMemory;
  }
  IWbemClassObject* definition = m_Class->GetInstanceClass();
  if (definition == nullptr) {
    kTrace.Error("NoMethodsClass(OrbRequest)\n");
    return kWmiNotDefined;
  }
  IWbemClassObject* instance = target == nullptr ? nullptr : target->GetClassObjectInstance();
  if (instance == nullptr) {
    return kWmiNotDefined;
  }

  MethodCall call{services, methodName, ObjectPtr(), ObjectPtr(), ObjectPtr(), ObjectPtr()};
  wmiReturn status = PrepareParameters(call, definition);
  if (status == kWmiSuccess) {
    status = PutInputs(call, m_InputParameters);
  }
  if (status == kWmiSuccess) {
    status = Execute(call, instance, m_Outcome);
  }
  if (m_Outcome == MethodOutcome::kRefused && !call.inParameters && !m_InputParameters.empty()) {
    m_Outcome = MethodOutcome::kUnknown;
  }
  return status == kWmiSuccess ? GetOutputs(call, m_OutputParameters) : status;
}

} // namespace korvex
