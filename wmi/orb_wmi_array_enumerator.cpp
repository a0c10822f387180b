#include "wmi/orb_wmi_array_enumerator.h"

#include "wmi/category_trace.h"

#include <utility>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kEnumerator};

} // namespace

OrbWmiArrayEnumerator::~OrbWmiArrayEnumerator() {
  CleanUpArray();
}

wmiReturn OrbWmiArrayEnumerator::Initialize(OrbWmiClass* elementClass, std::uint32_t count) {
  if (elementClass == nullptr) {
    kTrace.Error("ClassNotDefined(OrbWmiArrayEnumerator)-Initialize\n");
    return kWmiNotDefined;
  }
  if (SAFEARRAY* before = std::exchange(m_SafeArray, nullptr); before != nullptr) {
    SafeArrayDestroy(before);
  }
  m_Class = elementClass;
  m_ElementCount = count;
  m_NextElement = 0;
  SAFEARRAYBOUND bound;
  bound.cElements = count;
  bound.lLbound = 1;
  m_SafeArray = SafeArrayCreate(VT_UNKNOWN, 1, &bound);
  if (m_SafeArray == nullptr) {
    kTrace.Error("MemoryAllocationFailed(OrbWmiArrayEnumerator)-SafeArrayCreate\n");
    return kWmiOutOfMemory;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiArrayEnumerator::NewElementInstance() {
  if (m_Class == nullptr) {
    kTrace.Error("ClassNotDefined(OrbWmiArrayEnumerator)-NewElementInstance\n");
    return kWmiNotDefined;
  }
  IWbemClassObject* definition = m_Class->GetInstanceClass();
  if (definition == nullptr) {
    kTrace.Error("ClassNotDefined(OrbWmiArrayEnumerator)-GetInstanceClass\n");
    return kWmiRequestFailed;
  }
  const HRESULT result = SpawnFrom(definition);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SpawnInstance)-InitializeInputEnumerator.  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn OrbWmiArrayEnumerator::SaveElementInstance(std::uint32_t* indexOut) {
  if (m_Class == nullptr) {
    kTrace.Error("ClassNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n");
    return kWmiNotDefined;
  }
  if (m_ClassObjectInstance == nullptr) {
    kTrace.Error("ClassObjectInstanceNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n");
    return kWmiNotDefined;
  }
  if (m_SafeArray == nullptr) {
    kTrace.Error("SafeArrayNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n");
    return kWmiNotDefined;
  }
  if (indexOut == nullptr) {
    kTrace.Error("ElementOffsetNotDefined(OrbWmiArrayEnumerator)-SaveElementInstance\n");
    return kWmiNotDefined;
  }
  *indexOut = 0;

  IUnknown* element = GetEnumeratorInterface();
  LONG place = static_cast<LONG>(m_NextElement + 1);
  const HRESULT result = element == nullptr ? E_POINTER : SafeArrayPutElement(m_SafeArray, &place, element);
  if (element != nullptr) {
    // The array holds a reference of its own.
    element->Release();
  }
  if (FAILED(result)) {
    kTrace.Error("ElementNotSaved(OrbWmiArrayEnumerator).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  *indexOut = m_NextElement++;
  return kWmiSuccess;
}

void OrbWmiArrayEnumerator::cleanUp() {
  CleanUpArray();
  OrbWmiEnumerator::cleanUp();
}

void OrbWmiArrayEnumerator::CleanUpArray() {
  kTrace.Detail("cleanUp\n");
  if (SAFEARRAY* array = std::exchange(m_SafeArray, nullptr); array != nullptr) {
    SafeArrayDestroy(array);
  }
  m_ElementCount = 0;
  m_NextElement = 0;
}

} // namespace korvex
