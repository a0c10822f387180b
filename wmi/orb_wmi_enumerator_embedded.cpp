#include "platform/allocation.h"
#include "platform/com_owners.h"
#include "wmi/category_trace.h"
#include "wmi/orb_wmi_enumerator.h"

// Enumerators over what is embedded in a property of the current instance.

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kEnumerator};

/// Hands the filled enumerator to the caller, or releases it and hands out none.
wmiReturn GiveEnumerator(wmiReturn status, OrbWmiEnumerator* enumerator, OrbWmiEnumerator** enumeratorOut) {
  if (status != kWmiSuccess) {
    platform::DeleteObject(enumerator);
    enumerator = nullptr;
  }
  *enumeratorOut = enumerator;
  return status;
}

} // namespace

wmiReturn OrbWmiEnumerator::InitArrayEnumerator(OrbWmiClass* elementClass, const wchar_t* propertyName,
                                                OrbWmiEnumerator** enumeratorOut) {
  if (enumeratorOut == nullptr) {
    kTrace.Error("NewEnumeratorNotDefined(OrbWmiEnumerator)-InitArrayEnumerator\n");
    return kWmiNotDefined;
  }
  *enumeratorOut = nullptr;
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("ClassObjectInstanceNotDefined(OrbWmiEnumerator)-InitArrayEnumerator\n");
    return kWmiNotDefined;
  }
  auto* enumerator = platform::NewObject<OrbWmiEnumerator>("OrbWmiEnumerator");
  if (enumerator == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiEnumerator)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  return GiveEnumerator(FillArrayEnumerator(*enumerator, elementClass, propertyName), enumerator, enumeratorOut);
}

wmiReturn OrbWmiEnumerator::FillArrayEnumerator(OrbWmiEnumerator& enumerator, OrbWmiClass* elementClass,
                                                const wchar_t* propertyName) {
  struct VariantDeleter {
    platform::Variant* variant;
    ~VariantDeleter() { platform::DeleteObject(variant); }
  };
  const VariantDeleter array{platform::NewObject<platform::Variant>("InitArrayEnumerator")};
  if (array.variant == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  const platform::Bstr name(propertyName);
  if (!name) {
    kTrace.Error("MemoryAllocationFailed(SysAllocString)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  CIMTYPE cimType = CIM_EMPTY;
  const HRESULT result = m_ClassObjectInstance->Get(name.get(), 0, array.variant->put(), &cimType, nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Get)-InitArrayEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  enumerator.m_OwnedVariant = platform::NewObject<OrbWmiVariant>("OrbWmiVariant", OrbWmiVariant::Destruction::kSilent);
  if (enumerator.m_OwnedVariant == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiVariant)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  kTrace.Detail("OrbVariant(%s);var(%s);varType(0x%x);cimType(0x%x);\n", PointerText(enumerator.m_OwnedVariant).c_str(),
                PointerText(&array.variant->get()).c_str(), array.variant->get().vt, static_cast<unsigned>(cimType));
  enumerator.m_OwnedVariant->CopyVariant(array.variant->get());
  enumerator.Initialize(elementClass);
  enumerator.SetVariant(enumerator.m_OwnedVariant);
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::InitUnknownEnumerator(const wchar_t* propertyName, OrbWmiEnumerator** enumeratorOut) {
  if (enumeratorOut == nullptr) {
    kTrace.Error("NewEnumeratorNotDefined(OrbWmiEnumerator)-InitUnknownEnumerator\n");
    return kWmiNotDefined;
  }
  *enumeratorOut = nullptr;
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("ClassObjectInstanceNotDefined(OrbWmiEnumerator)-InitUnknownEnumerator\n");
    return kWmiNotDefined;
  }
  auto* enumerator = platform::NewObject<OrbWmiEnumerator>("OrbWmiEnumerator");
  if (enumerator == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiEnumerator)-InitUnknownEnumerator\n");
    return kWmiOutOfMemory;
  }
  enumerator->Initialize(m_Class);
  return GiveEnumerator(FillUnknownEnumerator(*enumerator, propertyName), enumerator, enumeratorOut);
}

wmiReturn OrbWmiEnumerator::FillUnknownEnumerator(OrbWmiEnumerator& enumerator, const wchar_t* propertyName) {
  platform::Variant value;
  CIMTYPE cimType = CIM_EMPTY;
  HRESULT result = m_ClassObjectInstance->Get(propertyName, 0, value.put(), &cimType, nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Get)-InitUnknownEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  if (value.get().vt != VT_UNKNOWN) {
    kTrace.Error("InitUnknownEnumerator-NotUnknown(Name-'%s';CimType-0x%x;VtType-0x%x).  Error 0x%x\n",
                 NarrowText(propertyName).c_str(), static_cast<unsigned>(cimType), value.get().vt, Hex(result));
    return kWmiNotDefined;
  }
  result = enumerator.StandOn(value.get().punkVal);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(QueryInterface)-InitUnknownEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

} // namespace korvex
