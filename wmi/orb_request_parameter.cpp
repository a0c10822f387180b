#include "wmi/orb_request_parameter.h"

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
  const std::size_t length = MeasureWideText(name);
  if (length > kMaxTextLength) {
    kTrace.Error("WMIRequestFailed(StringCchLength).  Error 0x%x\n", Hex(E_INVALIDARG));
    return kWmiRequestFailed;
  }
  wchar_t* copy = CopyWideText("RequestParamInitialize", name, length);
  if (copy == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-RequestParamInitialize\n");
    return kWmiOutOfMemory;
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
