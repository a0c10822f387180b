#include "wmi/orb_wmi_request.h"

#include "platform/allocation.h"
#include "wmi/category_trace.h"
#include "wmi/text_copy.h"

#include <new>
#include <utility>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kRequest};

bool Append(std::vector<OrbRequestParameter*>& parameters, OrbRequestParameter* parameter) {
  try {
    parameters.push_back(parameter);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void DeleteAll(std::vector<OrbRequestParameter*>& parameters) {
  for (OrbRequestParameter* parameter : parameters) {
    platform::DeleteObject(parameter);
  }
  parameters.clear();
}

} // namespace

OrbWmiRequest::~OrbWmiRequest() {
  cleanUp();
}

wmiReturn OrbWmiRequest::MethodRequest(const wchar_t* methodName, OrbWmiClass* methodsClass) {
  std::size_t length = 0;
  HRESULT result = MeasureWideText(methodName, length);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(StringCchLength)-MethodRequest.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  ForgetText();
  ForgetClass();
  m_Text = AllocateWideText("MethodRequestParamInitialize", length);
  if (m_Text == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-MethodRequestParamInitialize\n");
    return kWmiOutOfMemory;
  }
  result = CopyWideText(m_Text, length + 1, methodName);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(StringCchCopy)-MethodRequest.  Error 0x%x\n", Hex(result));
    ForgetText();
    return kWmiRequestFailed;
  }
  m_Class = methodsClass;
  return kWmiSuccess;
}

wmiReturn OrbWmiRequest::QueryRequest(const wchar_t* wqlText, OrbWmiConnection& connection) {
  std::size_t length = 0;
  HRESULT result = MeasureWideText(wqlText, length);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(StringCchLength)-QueryRequest.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  ForgetText();
  ForgetClass();
  m_Text = AllocateWideText("QueryRequestParamInitialize", length);
  if (m_Text == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-QueryRequestParamInitialize\n");
    return kWmiOutOfMemory;
  }
  result = CopyWideText(m_Text, length + 1, wqlText);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(StringCchCopy)-QueryRequest.  Error 0x%x\n", Hex(result));
    ForgetText();
    return kWmiRequestFailed;
  }
  m_Class = platform::NewObject<OrbWmiClass>("OrbWmiClass");
  if (m_Class == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiClass)-QueryRequest\n");
    ForgetText();
    return kWmiOutOfMemory;
  }
  m_OwnsClass = 1;
  const wmiReturn status = m_Class->Initialize(connection, nullptr);
  if (status != kWmiSuccess) {
    kTrace.Error("InitializationFailure(OrbWmiClass)-QueryRequest\n");
    ForgetClass();
    ForgetText();
    return status;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiRequest::AddInputParameter(const wchar_t* name, OrbWmiVariant* value) {
  auto* parameter = platform::NewObject<OrbRequestParameter>("OrbRequestParameter");
  if (parameter == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbRequestParameter)-AddInputParameter\n");
    return kWmiOutOfMemory;
  }
  wmiReturn status = parameter->RequestParamInitialize(name, value);
  if (status != kWmiSuccess) {
    kTrace.Error("InitializationFailure(OrbRequestParameter)-AddInputParameter\n");
  } else if (!Append(m_InputParameters, parameter)) {
    status = kWmiOutOfMemory;
  }
  if (status != kWmiSuccess) {
    platform::DeleteObject(parameter);
  }
  return status;
}

wmiReturn OrbWmiRequest::AddOutputParameter(const wchar_t* name, OrbWmiVariant* value) {
  auto* parameter = platform::NewObject<OrbRequestParameter>("OrbRequestParameter");
  if (parameter == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbRequestParameter)-AddOutputParameter\n");
    return kWmiOutOfMemory;
  }
  wmiReturn status = parameter->RequestParamInitialize(name, value);
  if (status != kWmiSuccess) {
    kTrace.Error("InitializationFailure(OrbRequestParameter)-AddOutputParameter\n");
  } else if (!Append(m_OutputParameters, parameter)) {
    status = kWmiOutOfMemory;
  }
  if (status != kWmiSuccess) {
    platform::DeleteObject(parameter);
  }
  return status;
}

void OrbWmiRequest::cleanUp() {
  kTrace.Detail("cleanUp(Request)\n");
  ForgetText();
  ForgetClass();
  DeleteAll(m_InputParameters);
  DeleteAll(m_OutputParameters);
}

void OrbWmiRequest::ForgetText() {
  platform::FreeStore(std::exchange(m_Text, nullptr));
}

void OrbWmiRequest::ForgetClass() {
  if (m_OwnsClass != 0) {
    platform::DeleteObject(std::exchange(m_Class, nullptr));
    m_OwnsClass = 0;
  }
}

} // namespace korvex
