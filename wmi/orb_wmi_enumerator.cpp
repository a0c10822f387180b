#include "wmi/orb_wmi_enumerator.h"

#include "wmi/category_trace.h"

#include <utility>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kEnumerator};

} // namespace

OrbWmiEnumerator::~OrbWmiEnumerator() {
  cleanUp();
}

wmiReturn OrbWmiEnumerator::Initialize(OrbWmiClass* elementClass) {
  if (elementClass == nullptr) {
    kTrace.Error("ClassNotDefined(OrbWmiEnumerator)-Initialize\n");
    return kWmiNotDefined;
  }
  ReleaseEnumerator();
  PutInstance();
  m_Class = elementClass;
  m_ClassObjectEnumerator = elementClass->GetInstanceEnumerator(m_IsCloned);
  kTrace.Detail("m_ClassObjectEnumerator %s;m_IsCloned 0x%x\n", PointerText(m_ClassObjectEnumerator).c_str(),
                m_IsCloned);
  if (m_ClassObjectEnumerator == nullptr) {
    kTrace.Error("InitializationFailure(OrbWmiEnumerator)->Initialize\n");
    return kWmiRequestFailed;
  }
  Next();
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::Initialize(OrbWmiClass* elementClass, OrbWmiVariant* variant) {
  if (elementClass == nullptr) {
    kTrace.Error("ClassNotDefined(OrbWmiEnumerator)-Initialize\n");
    return kWmiNotDefined;
  }
  if (variant == nullptr) {
    kTrace.Error("VariantNotDefined(OrbWmiEnumerator)-Initialize\n");
    return kWmiNotDefined;
  }
  ReleaseEnumerator();
  m_OwnedVariant.reset();
  m_Class = elementClass;
  m_ArrayVariant = variant;
  const VARIANT& held = variant->GetVariant();
  const HRESULT result = StandOn(held.vt == VT_UNKNOWN ? held.punkVal : nullptr);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(QueryInterface).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::InitializeInputEnumerator(OrbWmiClass* elementClass) {
  if (elementClass == nullptr) {
    kTrace.Error("ClassNotDefined(Reset)\n");
    return kWmiNotDefined;
  }
  ReleaseEnumerator();
  m_Class = elementClass;
  IWbemClassObject* definition = elementClass->GetInstanceClass();
  if (definition == nullptr) {
    return kWmiRequestFailed;
  }
  const HRESULT result = SpawnFrom(definition);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SpawnInstance)-InitializeInputEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::Next() {
  if (m_Class == nullptr) {
    kTrace.Error("ClassNotDefined(Next)\n");
    return kWmiNotDefined;
  }
  if (m_ClassObjectEnumerator == nullptr) {
    return kWmiNotDefined;
  }
  ULONG returned = 0;
  const HRESULT result = m_ClassObjectEnumerator->Next(static_cast<LONG>(WBEM_INFINITE), 1, PutInstance(), &returned);
  kTrace.Detail("Next m_ClassObjectInstance %s\n", PointerText(m_ClassObjectInstance).c_str());
  if (result == WBEM_S_FALSE) {
    PutInstance();
    return kWmiNoMoreData;
  }
  if (result != S_OK || m_ClassObjectInstance == nullptr) {
    PutInstance();
    kTrace.Error("WMIRequestFailed(Next)-Next.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::Reset() {
  if (m_Class == nullptr) {
    kTrace.Error("ClassNotDefined(Reset)\n");
    return kWmiNotDefined;
  }
  if (m_ClassObjectEnumerator == nullptr) {
    kTrace.Error("ClassObjectEnumeratorNotDefined(Reset)\n");
    return kWmiNotDefined;
  }
  const HRESULT result = m_ClassObjectEnumerator->Reset();
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(Reset)-Reset.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiEnumerator::GetElement(std::int32_t index) {
  if (m_ArrayVariant == nullptr) {
    kTrace.Error("VariantNotDefined(GetElement)\n");
    return kWmiNotDefined;
  }
  return m_ArrayVariant->GetElement(index, PutInstance());
}

wmiReturn OrbWmiEnumerator::SetVariant(OrbWmiVariant* variant) {
  if (variant == nullptr) {
    kTrace.Error("VariantNotDefined(SetVariant)\n");
    return kWmiNotDefined;
  }
  m_ArrayVariant = variant;
  return kWmiSuccess;
}

IUnknown* OrbWmiEnumerator::GetEnumeratorInterface() {
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("NoClassInstance(GetEnumeratorInterface)\n");
    return nullptr;
  }
  void* object = nullptr;
  const HRESULT result = m_ClassObjectInstance->QueryInterface(IID_IUnknown, &object);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(QueryInterface)-GetEnumeratorInterface.  Error 0x%x\n", Hex(result));
    return nullptr;
  }
  return static_cast<IUnknown*>(object);
}

void OrbWmiEnumerator::cleanUp() {
  kTrace.Detail("cleanUp\n");
  ReleaseEnumerator();
  PutInstance();
}

IWbemClassObject** OrbWmiEnumerator::PutInstance() {
  if (IWbemClassObject* instance = std::exchange(m_ClassObjectInstance, nullptr); instance != nullptr) {
    instance->Release();
  }
  return &m_ClassObjectInstance;
}

HRESULT OrbWmiEnumerator::SpawnFrom(IWbemClassObject* definition) {
  const HRESULT result = definition->SpawnInstance(0, PutInstance());
  return SUCCEEDED(result) && m_ClassObjectInstance == nullptr ? E_POINTER : result;
}

HRESULT OrbWmiEnumerator::StandOn(IUnknown* object) {
  IWbemClassObject** instance = PutInstance();
  if (object == nullptr) {
    return E_POINTER;
  }
  const HRESULT result = object->QueryInterface(IID_IWbemClassObject, reinterpret_cast<void**>(instance));
  return SUCCEEDED(result) && *instance == nullptr ? E_POINTER : result;
}

void OrbWmiEnumerator::ReleaseEnumerator() {
  IEnumWbemClassObject* enumerator = std::exchange(m_ClassObjectEnumerator, nullptr);
  if (enumerator != nullptr && m_IsCloned != 0) {
    enumerator->Release();
  }
  m_IsCloned = 0;
}

} // namespace korvex
