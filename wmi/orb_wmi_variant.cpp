#include "wmi/orb_wmi_variant.h"

#include "wmi/category_trace.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_common.h"

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kVariant};

} // namespace

OrbWmiVariant::OrbWmiVariant(Destruction destruction) : m_Destruction(destruction) {
  VariantInit(&m_Variant);
}

OrbWmiVariant::~OrbWmiVariant() {
  if (m_Destruction == Destruction::kTraced) {
    cleanUp();
  } else {
    Release(m_Variant);
  }
}

void OrbWmiVariant::cleanUp() {
  kTrace.Detail("cleanUp\n");
  Release(m_Variant);
}

wmiReturn OrbWmiVariant::Initialize() {
  return kWmiSuccess;
}

wmiReturn OrbWmiVariant::CopyVariant(const VARIANT& source) {
  VARIANT copy;
  VariantInit(&copy);
  const HRESULT result = VariantCopy(&copy, const_cast<VARIANT*>(&source));
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(VariantCopy).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  Release(m_Variant);
  m_Variant = copy;
  return kWmiSuccess;
}

wmiReturn OrbWmiVariant::Clear() {
  Release(m_Variant);
  return kWmiSuccess;
}

wmiReturn OrbWmiVariant::GetProperty(void* buffer, std::uint32_t length, std::uint32_t cimType) {
  if (m_Variant.vt == VT_NULL) {
    kTrace.Error("NullDataType(GetProperty)\n");
    return kWmiNullValue;
  }
  const std::optional<VARTYPE> wanted = VartypeOfCimType(cimType);
  if (wanted && !AreOfOneKind(*wanted, m_Variant.vt)) {
    return kWmiRequestFailed;
  }
  const wmiReturn status = OrbWmiCommon::SetCimType(m_Variant, cimType);
  return status != kWmiSuccess ? status : OrbWmiCommon::GetVariantData(m_Variant, buffer, length, cimType);
}

wmiReturn OrbWmiVariant::SetProperty(const void* value, std::uint32_t length, std::uint32_t cimType) {
  VARIANT before = m_Variant;
  wmiReturn status = OrbWmiCommon::SetCimType(m_Variant, cimType);
  if (status == kWmiSuccess) {
    status = OrbWmiCommon::SetVariantType(m_Variant, value, length, cimType);
  }
  if (status != kWmiSuccess) {
    m_Variant = before;
    return status;
  }
  Release(before);
  if (cimType == kCimObjectArray) {
    m_BorrowedArray = m_Variant.parray;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiVariant::GetElement(std::int32_t index, IWbemClassObject** out) {
  if (out == nullptr) {
    return kWmiNotDefined;
  }
  *out = nullptr;
  if ((m_Variant.vt & VT_ARRAY) == 0 || m_Variant.parray == nullptr) {
    return kWmiNoMoreData;
  }
  return m_Variant.vt == kVtObjectArray ? ElementAt(index, out) : kWmiRequestFailed;
}

wmiReturn OrbWmiVariant::ElementAt(std::int32_t index, IWbemClassObject** out) {
  LONG upper = 0;
  HRESULT result = SafeArrayGetUBound(m_Variant.parray, 1, &upper);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SafeArrayGetUBound).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  LONG lower = 0;
  result = SafeArrayGetLBound(m_Variant.parray, 1, &lower);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SafeArrayGetLBound).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  kTrace.Detail("Bounds(Low-0x%x;High-0x%x)\n", static_cast<unsigned>(lower), static_cast<unsigned>(upper));
  const std::int64_t count = std::int64_t{upper} - lower + 1;
  if (index < 0 || index >= count) {
    return kWmiNoMoreData;
  }
  if (!IsArrayOf(m_Variant.parray, VT_UNKNOWN, count)) {
    return kWmiRequestFailed;
  }

  void* data = nullptr;
  result = SafeArrayAccessData(m_Variant.parray, &data);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SafeArrayAccessData).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  IUnknown* element = data == nullptr ? nullptr : static_cast<IUnknown**>(data)[index];
  void* object = nullptr;
  result = element == nullptr ? E_POINTER : element->QueryInterface(IID_IWbemClassObject, &object);
  SafeArrayUnaccessData(m_Variant.parray);
  if (FAILED(result) || object == nullptr) {
    kTrace.Error("WMIRequestFailed(QueryInterface).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  *out = static_cast<IWbemClassObject*>(object);
  return kWmiSuccess;
}

void OrbWmiVariant::Release(VARIANT& value) {
  const bool isBorrowed = value.vt == kVtObjectArray && value.parray != nullptr && value.parray == m_BorrowedArray;
  if (!isBorrowed) {
    VariantClear(&value);
  }
  VariantInit(&value);
  m_BorrowedArray = nullptr;
}

} // namespace korvex
