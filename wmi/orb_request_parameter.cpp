#include "wmi/orb_request_parameter.h"

#include "platform/allocation.h"
#include "wmi/category_trace.h"
#include "wmi/text_copy.h"

#include <utility>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kRequest};

} // namespace

OrbRequestParameter::~OrbRequestParameter() {
  cleanUp();
}

wmiReturn OrbRequestParameter::RequestParamInitialize(const wchar_t* name, OrbWmiVariant* value) {
  kTrace.Detail("RequestParam(Arg-'%s';Param-0x%s)\n", NarrowText(name).c_str(), PointerText(value).c_str());
  if (value == nullptr) {
    return kWmiRequestFailed;
  }
  std::size_t length = 0;
  HRESULT result = MeasureWideText(name, length);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(StringCchLength).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  wchar_t* copy = AllocateWideText("RequestParamInitialize", length);
  if (copy == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-RequestParamInitialize\n");
    return kWmiOutOfMemory;
  }
  result = CopyWideText(copy, length + 1, name);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(StringCchCopy).  Error 0x%x\n", Hex(result));
    platform::FreeStore(copy);
    return kWmiRequestFailed;
  }
  platform::FreeStore(std::exchange(m_Name, copy));
  m_Value = value;
  return kWmiSuccess;
}

void OrbRequestParameter::cleanUp() {
  kTrace.Detail("cleanUp(RequestParameter)\n");
  platform::FreeStore(std::exchange(m_Name, nullptr));
}

} // namespace korvex
