#include "platform/com_owners.h"
#include "wmi/category_trace.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_common.h"
#include "wmi/orb_wmi_enumerator.h"

#include <cstring>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kEnumerator};

/// Whether a caller's value of `length` bytes can be written to a property of that type: the class, not the caller,
/// says how many bytes are taken from the value, and whether it is itself an interface or an array.
bool FitsLength(std::uint32_t cimType, std::uint32_t length) {
  switch (cimType) {
  case CIM_OBJECT:
  case kCimObjectArray:
    return length == sizeof(void*);
  case CIM_SINT64:
  case CIM_UINT64:
    return length >= sizeof(std::uint64_t);
  case CIM_SINT32:
  case CIM_UINT32:
    return length >= sizeof(std::uint32_t);
  case CIM_SINT8:
  case CIM_SINT16:
  case CIM_UINT16:
    return length >= sizeof(std::uint16_t);
  case CIM_UINT8:
  case CIM_BOOLEAN:
    return length >= sizeof(std::uint8_t);
  default:
    return true;
  }
}

} // namespace

wmiReturn OrbWmiEnumerator::GetProperty(const wchar_t* name, void* buffer, std::uint32_t length,
                                        std::uint32_t* delivered) {
  if (delivered != nullptr) {
    *delivered = 0;
  }
  if (buffer == nullptr) {
    kTrace.Error("BufferNotDefined(GetProperty)\n");
    return kWmiNotDefined;
  }
  std::memset(buffer, 0, length);
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("ClassObjectInstanceNotDefined(GetProperty)\n");
    return kWmiNotDefined;
  }
  platform::Variant value;
  CIMTYPE cimType = CIM_EMPTY;
  const HRESULT result = m_ClassObjectInstance->Get(name, 0, value.put(), &cimType, nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Get)-GetProperty.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  if (value.get().vt == VT_NULL) {
    kTrace.Error("NullDataType(GetProperty)\n");
    return kWmiNullValue;
  }
  return OrbWmiCommon::GetVariantData(value.get(), buffer, length, static_cast<std::uint32_t>(cimType), delivered);
}

wmiReturn OrbWmiEnumerator::SetProperty(const wchar_t* name, const void* value, std::uint32_t length) {
  if (value == nullptr) {
    kTrace.Error("BufferNotDefined(SetProperty)\n");
    return kWmiNotDefined;
  }
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("ClassObjectInstanceNotDefined(SetProperty)\n");
    return kWmiNotDefined;
  }
  platform::Variant before;
  CIMTYPE cimType = CIM_EMPTY;
  HRESULT result = m_ClassObjectInstance->Get(name, 0, before.put(), &cimType, nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Get)-SetProperty.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  if (!FitsLength(static_cast<std::uint32_t>(cimType), length)) {
    return kWmiRequestFailed;
  }
  std::uint32_t widened = 0;
  if (cimType == CIM_UINT16 && length < sizeof widened) {
    // A uint16 is taken as 32 bits, but may come in its own 16.
    std::memcpy(&widened, value, sizeof(std::uint16_t));
    value = &widened;
  }
  VARIANT written = before.get();
  const wmiReturn status = OrbWmiCommon::SetVariantType(written, value, length, static_cast<std::uint32_t>(cimType));
  if (status != kWmiSuccess) {
    return status;
  }
  result = m_ClassObjectInstance->Put(name, 0, &written, 0);
  if (written.vt != kVtObjectArray) {
    // Put has copied; an array stays its maker's.
    VariantClear(&written);
  }
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Put)-SetProperty.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::SaveProperties() {
  IWbemServices* services = m_Class == nullptr ? nullptr : m_Class->GetServices();
  if (services == nullptr) {
    kTrace.Error("NoServiceConnection(SaveProperties)\n");
    return kWmiNotDefined;
  }
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("ClassObjectInstanceNotDefined(SaveProperties)\n");
    return kWmiNotDefined;
  }
  const HRESULT result = services->PutInstance(m_ClassObjectInstance, 0, nullptr, nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(PutInstance).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

} // namespace korvex
