#include "platform/allocation.h"
#include "platform/com_owners.h"
#include "wmi/category_trace.h"
#include "wmi/orb_wmi_enumerator.h"

#include <utility>

// Enumerators over what is embedded in a property of the current instance.

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kEnumerator};

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
  StorePtr<OrbWmiEnumerator> enumerator(platform::NewObject<OrbWmiEnumerator>("OrbWmiEnumerator"));
  if (enumerator == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiEnumerator)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  const wmiReturn status = FillArrayEnumerator(enumerator, elementClass, propertyName);
  if (status == kWmiSuccess) {
    *enumeratorOut = enumerator.release();
  }
  return status;
}

wmiReturn OrbWmiEnumerator::FillArrayEnumerator(StorePtr<OrbWmiEnumerator>& enumerator, OrbWmiClass* elementClass,
                                                const wchar_t* propertyName) {
  const StorePtr<platform::Variant> array(platform::NewObject<platform::Variant>("InitArrayEnumerator"));
  if (array == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  const platform::Bstr name(propertyName);
  if (!name) {
    kTrace.Error("MemoryAllocationFailed(SysAllocString)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  CIMTYPE cimType = CIM_EMPTY;
  const HRESULT result = m_ClassObjectInstance->Get(name.get(), 0, array->put(), &cimType, nullptr);
  if (FAILED(result)) {
    enumerator.reset();
    kTrace.Error("WMIRequestFailed(Get)-InitArrayEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  StorePtr<OrbWmiVariant> holder(
      platform::NewObject<OrbWmiVariant>("OrbWmiVariant", OrbWmiVariant::Destruction::kSilent));
  if (holder == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiVariant)-InitArrayEnumerator\n");
    return kWmiOutOfMemory;
  }
  kTrace.Detail("OrbVariant(%s);var(%s);varType(0x%x);cimType(0x%x);\n", PointerText(holder.get()).c_str(),
                PointerText(&array->get()).c_str(), array->get().vt, static_cast<unsigned>(cimType));
  if (holder->CopyVariant(array->get()) != kWmiSuccess) {
    // A list that could not be copied must not look like one without elements.
    return kWmiRequestFailed;
  }
  enumerator->Initialize(elementClass);
  enumerator->SetVariant(holder.get());
  enumerator->m_OwnedVariant = std::move(holder);
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
  StorePtr<OrbWmiEnumerator> enumerator(platform::NewObject<OrbWmiEnumerator>("OrbWmiEnumerator"));
  if (enumerator == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiEnumerator)-InitUnknownEnumerator\n");
    return kWmiOutOfMemory;
  }
  enumerator->Initialize(m_Class);
  const wmiReturn status = FillUnknownEnumerator(enumerator, propertyName);
  if (status == kWmiSuccess) {
    *enumeratorOut = enumerator.release();
  }
  return status;
}

wmiReturn OrbWmiEnumerator::FillUnknownEnumerator(StorePtr<OrbWmiEnumerator>& enumerator, const wchar_t* propertyName) {
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
  result = enumerator->StandOn(value.get().punkVal);
  if (FAILED(result)) {
    enumerator.reset();
    kTrace.Error("WMIRequestFailed(QueryInterface)-InitUnknownEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

} // namespace korvex
