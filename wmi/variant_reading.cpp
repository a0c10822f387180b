#include "platform/allocation.h"
#include "platform/text.h"
#include "wmi/category_trace.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_common.h"

#include <algorithm>
#include <cstring>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kCommon};

/// The caller's buffer.
struct Target {
  void* buffer;
  std::uint32_t length;

  bool HasRoomFor(std::uint64_t bytes) const {
    if (length >= bytes) {
      return true;
    }
    kTrace.Error("InsufficientBufferLength-GetVariantData\n");
    return false;
  }
};

wmiReturn Unsupported() {
  kTrace.Error("GetVariantDataError(UnsupportedVariantType)\n");
  return kWmiRequestFailed;
}

wmiReturn WriteBytes(const Target& target, const void* value, std::uint32_t bytes) {
  if (!target.HasRoomFor(bytes)) {
    return kWmiRequestFailed;
  }
  std::memcpy(target.buffer, value, bytes);
  return kWmiSuccess;
}

/// 32 bits wide, while 2 bytes are the least that a caller must give: a shorter buffer takes the lower bytes.
wmiReturn ReadBoolean(const VARIANT& source, const Target& target) {
  if (!target.HasRoomFor(2)) {
    return kWmiRequestFailed;
  }
  const std::uint32_t value = source.boolVal == VARIANT_TRUE ? 1 : 0;
  std::memcpy(target.buffer, &value, std::min<std::size_t>(sizeof value, target.length));
  return kWmiSuccess;
}

wmiReturn ReadString(const wchar_t* text, const Target& target) {
  constexpr auto kFailed = static_cast<std::size_t>(-1);
  const std::size_t narrowLength = text == nullptr ? kFailed : platform::DefaultLocaleWcstombs(nullptr, text, 0);
  if (narrowLength == kFailed) {
    kTrace.Error("WMIRequestFailed(wcstombs).\n");
    return kWmiRequestFailed;
  }
  const std::size_t size = narrowLength + 1;
  if (!target.HasRoomFor(size)) {
    return kWmiRequestFailed;
  }
  auto* narrow = static_cast<char*>(platform::AllocateStore("GetVariantData", size + 1));
  if (narrow == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-GetVariantData\n");
    return kWmiOutOfMemory;
  }
  platform::DefaultLocaleWcstombs(narrow, text, size);
  std::memcpy(target.buffer, narrow, size);
  platform::FreeStore(narrow);
  return kWmiSuccess;
}

wmiReturn ReadText(const VARIANT& source, const Target& target, std::uint32_t cimType) {
  if (cimType == CIM_STRING) {
    return ReadString(source.bstrVal, target);
  }
  if (cimType != CIM_UINT64) {
    return kWmiSuccess;
  }
  if (source.bstrVal == nullptr) {
    return Unsupported();
  }
  const std::int64_t number = OrbWmiCommon::WideToInt64(source.bstrVal);
  return WriteBytes(target, &number, sizeof number);
}

/// Only into a buffer of exactly a VARIANT's size, so that an object where a plain value was expected is refused.
wmiReturn ReadObject(const VARIANT& source, const Target& target) {
  if (target.length != sizeof(VARIANT)) {
    kTrace.Error("InsufficientBufferLength-GetVariantData\n");
    return kWmiRequestFailed;
  }
  const HRESULT result = VariantCopy(static_cast<VARIANT*>(target.buffer), const_cast<VARIANT*>(&source));
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(VariantCopy).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  return kWmiSuccess;
}

wmiReturn ReadByteArray(SAFEARRAY* array, const Target& target, std::uint32_t* delivered) {
  LONG lower = 0;
  HRESULT result = SafeArrayGetLBound(array, 1, &lower);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SafeArrayGetLBound).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  LONG upper = 0;
  result = SafeArrayGetUBound(array, 1, &upper);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SafeArrayGetUBound).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  const std::int64_t count = std::int64_t{upper} - lower + 1;
  if (!IsArrayOf(array, VT_UI1, count)) {
    return Unsupported();
  }
  if (!target.HasRoomFor(static_cast<std::uint64_t>(count))) {
    return kWmiRequestFailed;
  }
  void* data = nullptr;
  result = SafeArrayAccessData(array, &data);
  if (FAILED(result)) {
    kTrace.Error("WMIRequestFailed(SafeArrayAccessData).  Error 0x%x\n", Hex(result));
    return kWmiRequestFailed;
  }
  const bool hasData = count == 0 || data != nullptr;
  if (count != 0 && hasData) {
    std::memcpy(target.buffer, data, static_cast<std::size_t>(count));
  }
  SafeArrayUnaccessData(array);
  if (delivered != nullptr && hasData) {
    *delivered = static_cast<std::uint32_t>(count);
  }
  return hasData ? kWmiSuccess : Unsupported();
}

} // namespace

wmiReturn OrbWmiCommon::GetVariantData(const VARIANT& source, void* buffer, std::uint32_t length, std::uint32_t cimType,
                                       std::uint32_t* delivered) {
  kTrace.Detail("GetVariantType(0x%x);cimType(0x%x)\n", source.vt, static_cast<unsigned>(cimType));
  const Target target{buffer, buffer == nullptr ? 0 : length};
  switch (source.vt) {
  case VT_I4:
    return WriteBytes(target, &source.lVal, sizeof source.lVal);
  case VT_UI1:
    return WriteBytes(target, &source.bVal, sizeof source.bVal);
  case VT_BOOL:
    return ReadBoolean(source, target);
  case VT_BSTR:
    return ReadText(source, target, cimType);
  case VT_UNKNOWN:
    return ReadObject(source, target);
  case kVtByteArray:
    return ReadByteArray(source.parray, target, delivered);
  default:
    return Unsupported();
  }
}

} // namespace korvex
