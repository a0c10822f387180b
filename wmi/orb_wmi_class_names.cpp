#include "platform/com_owners.h"
#include "wmi/category_trace.h"
#include "wmi/orb_wmi_class.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kClass};

/// The status of a name iteration's results that have one of their own.
std::optional<wmiReturn> IterationStatus(HRESULT result) {
  switch (result) {
  case WBEM_E_FAILED:
  case WBEM_E_TRANSPORT_FAILURE:
    return kWmiRequestFailed;
  case WBEM_E_INVALID_PARAMETER:
  case WBEM_E_UNEXPECTED:
    return kWmiNotDefined;
  case WBEM_E_OUT_OF_MEMORY:
    return kWmiOutOfMemory;
  case WBEM_S_NO_MORE_DATA:
    return kWmiNoMoreData;
  default:
    return std::nullopt;
  }
}

bool MayGoOn(HRESULT beginResult) {
  return beginResult == S_OK || beginResult == WBEM_E_UNEXPECTED;
}

/// The name in the ANSI code page, terminated; cut to the room that the buffer has.
void GiveName(const platform::Bstr& name, char* buffer, std::uint32_t length) {
  if (length == 0) {
    return;
  }
  std::memset(buffer, 0, length);
  const std::string narrow = NarrowText(name.get());
  std::copy_n(narrow.data(), std::min<std::size_t>(narrow.size(), length - 1), buffer);
}

} // namespace

wmiReturn OrbWmiClass::ResetMethodName(char* buffer, std::uint32_t length) {
  if (m_ClassObject == nullptr) {
    kTrace.Error("InstanceClassNotDefined(ResetMethodName)\n");
    return kWmiNotDefined;
  }
  if (!MayGoOn(m_ClassObject->BeginMethodEnumeration(0))) {
    return kWmiRequestFailed;
  }
  return NextMethodName(buffer, length);
}

wmiReturn OrbWmiClass::NextMethodName(char* buffer, std::uint32_t length) {
  if (m_ClassObject == nullptr) {
    kTrace.Error("InstanceClassNotDefined(NextMethodName)\n");
    return kWmiNotDefined;
  }
  if (buffer == nullptr) {
    kTrace.Error("BufferNotDefined(NextMethodName)\n");
    return kWmiNotDefined;
  }
  platform::Bstr name;
  platform::ComPtr<IWbemClassObject> inSignature;
  platform::ComPtr<IWbemClassObject> outSignature;
  const HRESULT result = m_ClassObject->NextMethod(0, name.put(), inSignature.put(), outSignature.put());
  if (const std::optional<wmiReturn> status = IterationStatus(result)) {
    return *status;
  }
  if (FAILED(result) || !name) {
    kTrace.Error("PropertyNameNull(NextMethodName)\n");
    return kWmiRequestFailed;
  }
  GiveName(name, buffer, length);
  return kWmiSuccess;
}

wmiReturn OrbWmiClass::ResetPropertyName(char* buffer, std::uint32_t length) {
  if (m_ClassObject == nullptr) {
    kTrace.Error("InstanceClassNotDefined(ResetPropertyName)\n");
    return kWmiNotDefined;
  }
  if (!MayGoOn(m_ClassObject->BeginEnumeration(0))) {
    return kWmiRequestFailed;
  }
  return NextPropertyName(buffer, length);
}

wmiReturn OrbWmiClass::NextPropertyName(char* buffer, std::uint32_t length) {
  if (m_ClassObject == nullptr) {
    kTrace.Error("InstanceClassNotDefined(NextPropertyName)\n");
    return kWmiNotDefined;
  }
  if (buffer == nullptr) {
    kTrace.Error("BufferNotDefined(NextPropertyName)\n");
    return kWmiNotDefined;
  }
  platform::Bstr name;
  const HRESULT result = m_ClassObject->Next(0, name.put(), nullptr, nullptr, nullptr);
  if (const std::optional<wmiReturn> status = IterationStatus(result)) {
    return *status;
  }
  if (FAILED(result) || !name) {
    return kWmiRequestFailed;
  }
  GiveName(name, buffer, length);
  return kWmiSuccess;
}

} // namespace korvex
