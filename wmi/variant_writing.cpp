#include "platform/allocation.h"
#include "platform/text.h"
#include "wmi/category_trace.h"
#include "wmi/cim_types.h"
#include "wmi/orb_wmi_common.h"

#include <climits>
#include <cstdio>
#include <cstring>

namespace korvex {
namespace {

constexpr CategoryTrace kTrace{WmiLayerTrace::kCommon};

/// The caller's value as it stands in memory, aligned or not.
template <class T>
T ValueAt(const void* value) {
  T copy;
  std::memcpy(&copy, value, sizeof copy);
  return copy;
}

VARIANT MakeVariant(VARTYPE type) {
  VARIANT variant;
  VariantInit(&variant);
  variant.vt = type;
  return variant;
}

/// Gives the target a text of `length` bytes in the ANSI code page, ending at the first terminator among them.
wmiReturn WriteText(VARIANT& target, const char* text, std::uint32_t length) {
  const std::uint64_t bytes = (std::uint64_t{length} + 1) * sizeof(wchar_t);
  auto* wide = static_cast<wchar_t*>(platform::AllocateStore("SetVariantType", bytes));
  if (wide == nullptr) {
    kTrace.Error("MemoryAllocationFailed(malloc)-SetVariantType\n");
    return kWmiOutOfMemory;
  }
  if (length != 0 && length <= INT_MAX) {
    MultiByteToWideChar(CP_ACP, 0, text, static_cast<int>(length), wide, static_cast<int>(length));
  }
  VARIANT written = MakeVariant(VT_BSTR);
  written.bstrVal = SysAllocString(wide);
  platform::FreeStore(wide);
  if (written.bstrVal == nullptr) {
    return kWmiOutOfMemory;
  }
  target = written;
  return kWmiSuccess;
}

wmiReturn WriteString(VARIANT& target, const void* value, std::uint32_t length) {
  return WriteText(target, static_cast<const char*>(value), length);
}

/// Room for a 64-bit number in decimal.
constexpr int kDecimalTextSize = 25;

wmiReturn WriteSigned64(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  char text[kDecimalTextSize];
  const int written = std::snprintf(text, sizeof text, "%lld", static_cast<long long>(ValueAt<std::int64_t>(value)));
  if (written < 0 || written >= kDecimalTextSize) {
    kTrace.Error("SetVariantDataError(StringCbPrintfW).  Error 0x%x\n", Hex(STRSAFE_E_INSUFFICIENT_BUFFER));
    return kWmiRequestFailed;
  }
  return WriteText(target, text, static_cast<std::uint32_t>(written));
}

wmiReturn WriteUnsigned64(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  char text[kDecimalTextSize];
  const int written =
      std::snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(ValueAt<std::uint64_t>(value)));
  if (written < 0 || written >= kDecimalTextSize) {
    kTrace.Error("SetVariantDataError(StringCbPrintfA).  Error 0x%x\n", Hex(STRSAFE_E_INSUFFICIENT_BUFFER));
    return kWmiRequestFailed;
  }
  return WriteText(target, text, static_cast<std::uint32_t>(written));
}

wmiReturn WriteInteger16(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  target = MakeVariant(VT_I2);
  target.iVal = ValueAt<std::int16_t>(value);
  return kWmiSuccess;
}

wmiReturn WriteInteger32(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  target = MakeVariant(VT_I4);
  target.lVal = ValueAt<std::int32_t>(value);
  return kWmiSuccess;
}

wmiReturn WriteByte(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  target = MakeVariant(VT_UI1);
  target.bVal = ValueAt<std::uint8_t>(value);
  return kWmiSuccess;
}

wmiReturn WriteBoolean(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  target = MakeVariant(VT_BOOL);
  target.boolVal = ValueAt<std::uint8_t>(value) != 0 ? VARIANT_TRUE : VARIANT_FALSE;
  return kWmiSuccess;
}

// For objects and arrays the value is itself the interface or the array, which a VARIANT holds without const.

wmiReturn WriteObject(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  target = MakeVariant(VT_UNKNOWN);
  target.punkVal = static_cast<IUnknown*>(const_cast<void*>(value));
  return kWmiSuccess;
}

wmiReturn WriteObjectArray(VARIANT& target, const void* value, std::uint32_t /*length*/) {
  target = MakeVariant(kVtObjectArray);
  target.parray = static_cast<SAFEARRAY*>(const_cast<void*>(value));
  return kWmiSuccess;
}

/// How a caller's value of one CIM type becomes a VARIANT.
struct WriterRow {
  std::uint32_t cimType;
  wmiReturn (*write)(VARIANT& target, const void* value, std::uint32_t length);
};

constexpr WriterRow kWriters[] = {
    {CIM_SINT16, &WriteInteger16},  {CIM_SINT8, &WriteInteger16},  {CIM_SINT32, &WriteInteger32},
    {CIM_UINT16, &WriteInteger32},  {CIM_UINT32, &WriteInteger32}, {CIM_UINT8, &WriteByte},
    {CIM_BOOLEAN, &WriteBoolean},   {CIM_STRING, &WriteString},    {CIM_SINT64, &WriteSigned64},
    {CIM_UINT64, &WriteUnsigned64}, {CIM_OBJECT, &WriteObject},    {kCimObjectArray, &WriteObjectArray},
};

} // namespace

wmiReturn OrbWmiCommon::SetVariantType(VARIANT& target, const void* value, std::uint32_t length,
                                       std::uint32_t cimType) {
  kTrace.Detail("SetVariantType(0x%x);cimType(0x%x)\n", target.vt, static_cast<unsigned>(cimType));
  for (const WriterRow& row : kWriters) {
    if (row.cimType == cimType) {
      return value == nullptr ? kWmiRequestFailed : row.write(target, value, length);
    }
  }
  kTrace.Error("SetVariantDataError(UnknownCIMType)\n");
  return kWmiRequestFailed;
}

} // namespace korvex
